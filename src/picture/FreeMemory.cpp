// Free memory as the system tells it, see FreeMemory.h.
#include "picture/FreeMemory.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <optional>
#include <utility>

namespace pictorel {
namespace {

constexpr std::int64_t kUnbounded = std::numeric_limits<std::int64_t>::max();

// The number behind a word of a file.
std::optional<std::int64_t> NumberBehind(const std::string& fileName, const std::string& wanted) {
    std::ifstream file(fileName);
    for (std::string word; file >> word;) {
        std::int64_t number = 0;
        if (word == wanted && file >> number) {
            return number;
        }
    }
    return std::nullopt;
}

std::optional<std::int64_t> NumberIn(const std::string& fileName) {
    std::ifstream file(fileName);
    std::int64_t number = 0;
    return file >> number ? std::optional(number) : std::nullopt; // "max" is none
}

// What the control groups leave, from the process's own up to the root. Pages of files count as used there,
// though the system takes them back first.
std::int64_t LeftByGroups(const std::string& processes, const std::string& groups) {
    std::ifstream file(processes + "/self/cgroup");
    std::int64_t left = kUnbounded;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with("0::")) {
            continue;
        }
        for (std::string path = line.substr(3); !path.empty(); path.resize(path.rfind('/'))) {
            const std::string folder = groups + path;
            const auto most = NumberIn(folder + "/memory.max");
            const auto now = NumberIn(folder + "/memory.current");
            if (most && now) {
                const auto files = NumberBehind(folder + "/memory.stat", "inactive_file").value_or(0);
                left = std::min(left, *most - *now + files);
            }
            if (path.find('/') == std::string::npos) {
                break;
            }
        }
    }
    return std::max<std::int64_t>(left, 0);
}

// What the limits of the process leave: pages that it has against those that it may have.
std::int64_t LeftByLimits() {
    std::ifstream file("/proc/self/statm");
    std::array<std::int64_t, 6> pages{}; // all, resident, shared, code, unused, data
    for (std::int64_t& count : pages) {
        file >> count;
    }
    std::int64_t left = kUnbounded;
    for (const auto& [resource, used] : {std::pair(RLIMIT_AS, pages[0]), std::pair(RLIMIT_DATA, pages[5])}) {
        rlimit limit{};
        if (::getrlimit(resource, &limit) == 0 && limit.rlim_cur < static_cast<rlim_t>(kUnbounded)) {
            left = std::min(left, static_cast<std::int64_t>(limit.rlim_cur) - used * ::sysconf(_SC_PAGESIZE));
        }
    }
    return std::max<std::int64_t>(left, 0);
}

} // namespace

std::int64_t FreeMemoryAsToldIn(const std::string& processes, const std::string& groups) {
    const auto kilobytes = NumberBehind(processes + "/meminfo", "MemAvailable:");
    return std::min(kilobytes ? *kilobytes << 10 : kUnbounded, LeftByGroups(processes, groups));
}

std::int64_t FreeMemory() {
    return std::min(FreeMemoryAsToldIn("/proc", "/sys/fs/cgroup"), LeftByLimits());
}

std::string MemoryText(std::int64_t bytes) {
    constexpr double kMega = 1e6;
    constexpr double kGiga = 1e9;
    std::array<char, 32> text{};
    const auto amount = static_cast<double>(bytes);
    const bool isGiga = amount >= kGiga;
    std::snprintf(text.data(), text.size(), isGiga ? "%.1f GB" : "%.0f MB",
                  amount / (isGiga ? kGiga : kMega));
    return text.data();
}

} // namespace pictorel
