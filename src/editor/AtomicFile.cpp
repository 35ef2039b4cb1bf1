// Reading and replacing whole files, see AtomicFile.h.
#include "editor/AtomicFile.h"

#include "editor/Descriptor.h"
#include "editor/FileBeside.h"
#include "picture/ImagingError.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <new>

namespace pictorel {
namespace {

constexpr std::int64_t kLargestFile = std::int64_t{5}
                                      << 30; // a gigapixel of four components, and room for headers
constexpr int kMostLinks = 40;               // as many as the system follows

// The file that a link leads to, there or not, so that saving over a link writes what it links to.
std::string LinkTarget(const std::string& fileName) {
    std::filesystem::path target(fileName);
    std::error_code error;
    for (int links = 0; links < kMostLinks; ++links) {
        const std::filesystem::path next = std::filesystem::read_symlink(target, error);
        if (error) {
            break; // it is no link
        }
        target = target.parent_path() / next;
    }
    return target.string();
}

} // namespace

std::optional<codecs::ByteBuffer> ReadWholeFile(const std::string& fileName) {
    // Without O_NONBLOCK, opening a pipe that nobody writes to would never return.
    Descriptor file(::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (!file.IsOpen() || ::fstat(file.Number(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size > kLargestFile) {
        return std::nullopt;
    }
    try {
        codecs::ByteBuffer bytes(static_cast<std::size_t>(status.st_size));
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t read = ::read(file.Number(), bytes.data() + done, bytes.size() - done);
            if (read < 0 && errno == EINTR) {
                continue;
            }
            if (read < 0) {
                return std::nullopt;
            }
            if (read == 0) {
                bytes.resize(done); // it became shorter while it was read
            }
            done += static_cast<std::size_t>(read);
        }
        return bytes;
    } catch (const std::bad_alloc&) {
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to read this file.");
    }
}

void ReplaceFile(const std::string& fileName, codecs::ByteView bytes, Durability durability) {
    ReplaceFile(
        fileName, [bytes](const codecs::ByteSink& sink) { sink(bytes); }, durability);
}

void ReplaceFile(const std::string& fileName, const std::function<void(const codecs::ByteSink& sink)>& write,
                 Durability durability) {
    FileBeside beside(LinkTarget(fileName), fileName);
    write([&](codecs::ByteView part) { beside.Write(part); });
    if (durability == Durability::Lasting) {
        beside.Flush();
    }
    beside.TakePlace();
    if (durability == Durability::Lasting) {
        beside.FlushFolder();
        beside.SweepFolder();
    }
}

} // namespace pictorel
