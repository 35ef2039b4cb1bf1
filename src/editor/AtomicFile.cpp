// Reading and replacing whole files, see AtomicFile.h.
#include "editor/AtomicFile.h"

#include "picture/ImagingError.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <new>
#include <utility>

namespace pictorel {
namespace {

constexpr std::int64_t kLargestFile = std::int64_t{5}
                                      << 30; // a gigapixel of four components, and room for headers
constexpr mode_t kNewFileMode = 0666;        // less the process's mask
constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kAccessBits = 07777;

class Descriptor {
  public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int Number() const { return number_; }
    bool IsOpen() const { return number_ >= 0; }

    bool Close() {
        const int number = std::exchange(number_, -1);
        return number < 0 || ::close(number) == 0;
    }

  private:
    int number_;
};

[[noreturn]] void ThrowWriteError(const std::string& fileName, const std::string& reason) {
    throw ImagingError(ImagingFailure::FileAccess,
                       "The file " + fileName + " could not be written: " + reason + ".");
}

[[noreturn]] void ThrowSystemError(const std::string& fileName, int error) {
    ThrowWriteError(fileName, std::strerror(error)); // NOLINT(concurrency-mt-unsafe): one thread writes files
}

void WriteAll(int descriptor, codecs::ByteView bytes, const std::string& fileName) {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(descriptor, bytes.data() + done, bytes.size() - done);
        if (written < 0 && errno != EINTR) {
            ThrowSystemError(fileName, errno);
        }
        done += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
}

// The file that a link leads to, so that saving over a link writes what it links to.
std::string LinkTarget(const std::string& fileName) {
    std::error_code error;
    const auto target = std::filesystem::weakly_canonical(std::filesystem::path(fileName), error);
    return error ? fileName : target.string();
}

// Access rights for the new file: those of a regular file that is there, nothing where there is none.
std::optional<mode_t> RightsOfExisting(const std::string& target, const std::string& fileName) {
    struct stat existing {};
    if (::stat(target.c_str(), &existing) != 0) {
        return std::nullopt;
    }
    if (!S_ISREG(existing.st_mode)) {
        ThrowWriteError(fileName, "It is a folder or a device");
    }
    if ((existing.st_mode & kAnyWriteBit) == 0 || ::access(target.c_str(), W_OK) != 0) {
        ThrowWriteError(fileName, "It is write-protected");
    }
    return existing.st_mode & kAccessBits;
}

// The temporary file beside the target; it goes with the object unless it was renamed into its place.
class FileBeside {
  public:
    FileBeside(const std::string& target, const std::string& fileName, std::optional<mode_t> rights)
        : name_((std::filesystem::path(target).parent_path() / ".pictorel-save-XXXXXX").string()),
          descriptor_(::mkostemp(name_.data(), O_CLOEXEC)) {
        if (!descriptor_.IsOpen()) {
            ThrowSystemError(fileName, errno);
        }
        const mode_t mask = ::umask(0);
        ::umask(mask);
        ::fchmod(descriptor_.Number(), rights.value_or(kNewFileMode & ~mask));
    }

    ~FileBeside() {
        if (!renamed_) {
            ::unlink(name_.c_str());
        }
    }
    FileBeside(const FileBeside&) = delete;
    FileBeside& operator=(const FileBeside&) = delete;

    int Number() const { return descriptor_.Number(); }

    void RenameTo(const std::string& target, const std::string& fileName) {
        if (!descriptor_.Close() || ::rename(name_.c_str(), target.c_str()) != 0) {
            ThrowSystemError(fileName, errno);
        }
        renamed_ = true;
    }

  private:
    std::string name_;
    Descriptor descriptor_;
    bool renamed_ = false;
};

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
    const std::string target = LinkTarget(fileName);
    FileBeside beside(target, fileName, RightsOfExisting(target, fileName));
    write([&](codecs::ByteView part) { WriteAll(beside.Number(), part, fileName); });
    if (durability == Durability::Lasting && ::fsync(beside.Number()) != 0) {
        ThrowSystemError(fileName, errno);
    }
    beside.RenameTo(target, fileName);
}

} // namespace pictorel
