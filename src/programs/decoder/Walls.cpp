// The walls around the decoder, see Walls.h.
#include "programs/decoder/Walls.h"

#include "programs/decoder/SystemCallFilter.h"

#include <linux/capability.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

namespace pictorel::decoder {
namespace {

bool Limit(decltype(RLIMIT_AS) resource, std::uint64_t most) noexcept {
    rlimit limit{};
    if (::getrlimit(resource, &limit) != 0) {
        return false;
    }
    limit.rlim_max = std::min<rlim_t>(limit.rlim_max, most);
    limit.rlim_cur = limit.rlim_max;
    return ::setrlimit(resource, &limit) == 0;
}

// Libraries, stacks, and what allocators set aside for each thread without using it.
[[maybe_unused]] constexpr std::uint64_t kIdleAddressSpace = std::uint64_t{4} << 30;

bool LimitMemory(const WallLimits& limits) noexcept {
#ifdef PICTOREL_SANITIZED // the sanitizers map terabytes that they do not use
    static_cast<void>(limits);
    return false;
#else
    const std::uint64_t memory = limits.memoryBytes != 0
                                     ? limits.memoryBytes
                                     : static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES)) *
                                           static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    return Limit(RLIMIT_DATA, memory) && Limit(RLIMIT_AS, memory + limits.sharedBytes + kIdleAddressSpace);
#endif
}

bool LimitFiles() noexcept {
    constexpr std::uint64_t kOpenFiles = 1024; // each thread of Qt's takes one
    const bool noCore = Limit(RLIMIT_CORE, 0);
    const bool noGrowth = Limit(RLIMIT_FSIZE, 0);
    return Limit(RLIMIT_NOFILE, kOpenFiles) && noCore && noGrowth;
}

// The kernel's ways into the file system by the version of its interface that brought them.
constexpr std::uint64_t FileAccessesOf(long version) noexcept {
    constexpr unsigned kOfFirst = 13;
    constexpr unsigned kOfSecond = 14; // and moving between folders
    constexpr unsigned kOfThird = 15;  // and truncating
    constexpr unsigned kOfFifth = 16;  // and controlling devices
    const unsigned bits = version >= 5   ? kOfFifth
                          : version >= 3 ? kOfThird
                          : version == 2 ? kOfSecond
                                         : kOfFirst;
    return (std::uint64_t{1} << bits) - 1;
}

// What the kernel's header of this name says; the one at hand may be older than the kernel.
struct LandlockRules {
    std::uint64_t files;
    std::uint64_t network;
    std::uint64_t scopes;
};

bool ShutFileSystem() noexcept {
    constexpr unsigned kAskVersion = 1;
    constexpr std::uint64_t kBindAndConnect = 3;
    constexpr std::uint64_t kSocketsAndSignals = 3;
    const long version = ::syscall(SYS_landlock_create_ruleset, nullptr, 0, kAskVersion);
    if (version < 1) {
        return false;
    }
    // Everything is a matter of rules, and there are none.
    const LandlockRules rules{FileAccessesOf(version), version >= 4 ? kBindAndConnect : 0,
                              version >= 6 ? kSocketsAndSignals : 0};
    const std::size_t known = version >= 6   ? sizeof(rules)
                              : version >= 4 ? offsetof(LandlockRules, scopes)
                                             : offsetof(LandlockRules, network);
    const long ruleSet = ::syscall(SYS_landlock_create_ruleset, &rules, known, 0);
    if (ruleSet < 0) {
        return false;
    }
    const bool isShut = ::syscall(SYS_landlock_restrict_self, ruleSet, 0) == 0;
    ::close(static_cast<int>(ruleSet));
    return isShut;
}

// An ordinary user needs a user namespace for it, which some machines do not give.
bool CutNetwork() noexcept {
    return ::unshare(CLONE_NEWNET | CLONE_NEWIPC) == 0 ||
           ::unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWIPC) == 0;
}

bool DropPrivileges() noexcept {
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3]{};
    const bool dropped = ::syscall(SYS_capset, &header, none) == 0;
    const bool untraceable = ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0;
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && dropped && untraceable;
}

} // namespace

std::uint32_t RaiseWalls(const WallLimits& limits, std::uint32_t wanted) noexcept {
    std::uint32_t standing = 0;
    const auto raise = [&](Wall wall, const auto& build) {
        if ((wanted & wall) != 0 && build()) {
            standing |= wall;
        }
    };
    // In this order: each takes away what those before it needed. Both of the last need the promise never to
    // gain privileges, wherever they are asked for.
    raise(kNetwork, CutNetwork);
    raise(kMemory, [&] { return LimitMemory(limits); });
    raise(kProcessorTime, [&] { return Limit(RLIMIT_CPU, limits.processorSeconds); });
    raise(kFiles, LimitFiles);
    raise(kPrivileges, DropPrivileges);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    raise(kFileSystem, ShutFileSystem);
    raise(kSystemCalls, [&] { return FilterSystemCalls(limits.answersOn); });
    return standing;
}

} // namespace pictorel::decoder
