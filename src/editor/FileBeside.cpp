// A file that grows beside the one it will replace, see FileBeside.h.
#include "editor/FileBeside.h"

#include "editor/FileAttributes.h"
#include "picture/ImagingError.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <optional>
#include <random>
#include <string_view>
#include <utility>

namespace pictorel {
namespace {

constexpr std::string_view kNameBegins = ".pictorel-save-"; // then the process, a dash and six letters
constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::size_t kChanceLetters = 6;
constexpr int kMostTries = 100;

constexpr mode_t kPrivateMode = S_IRUSR | S_IWUSR;
constexpr mode_t kNewFileMode = 0666; // less the process's mask, or what the folder's list says
constexpr mode_t kAnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

[[noreturn]] void ThrowWriteError(const std::string& fileName, const std::string& reason) {
    throw ImagingError(ImagingFailure::FileAccess,
                       "The file " + fileName + " could not be written: " + reason + ".");
}

[[noreturn]] void ThrowSystemError(const std::string& fileName, int error) {
    ThrowWriteError(fileName, std::strerror(error)); // NOLINT(concurrency-mt-unsafe): one thread writes files
}

std::string NewName() {
    std::random_device chance;
    std::string name = std::string(kNameBegins) + std::to_string(::getpid()) + '-';
    for (std::size_t i = 0; i < kChanceLetters; ++i) {
        name += kLetters[chance() % kLetters.size()];
    }
    return name;
}

// The process that made a file of such a name; nothing where the name is none of ours.
std::optional<pid_t> MakerOf(std::string_view name) {
    if (name.substr(0, kNameBegins.size()) != kNameBegins) {
        return std::nullopt;
    }
    name.remove_prefix(kNameBegins.size());
    const std::size_t digits = std::min(name.find_first_not_of("0123456789"), name.size());
    constexpr std::size_t kMostDigits = 9;
    const bool isOurs = digits > 0 && digits <= kMostDigits && name.size() == digits + 1 + kChanceLetters &&
                        name[digits] == '-' &&
                        name.find_first_not_of(kLetters, digits + 1) == std::string_view::npos;
    return isOurs ? std::optional(static_cast<pid_t>(std::stol(std::string(name.substr(0, digits)))))
                  : std::nullopt;
}

bool IsAlive(pid_t process) {
    return ::kill(process, 0) == 0 || errno == EPERM;
}

// Removes the file of a maker that is gone. A maker holds the lock; where files cannot be locked, one that
// runs is taken to be at work. The lock is ours while the file goes, see FileBeside::Create.
void RemoveLeftover(const std::string& file, pid_t maker) {
    const Descriptor leftover(::open(file.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status {};
    if (!leftover.IsOpen() || ::fstat(leftover.Number(), &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_uid != ::geteuid()) {
        return;
    }
    const bool isLocked = ::flock(leftover.Number(), LOCK_EX | LOCK_NB) != 0;
    if (!isLocked || (errno != EWOULDBLOCK && !IsAlive(maker))) {
        ::unlink(file.c_str());
    }
}

} // namespace

FileBeside::FileBeside(std::string target, std::string fileName)
    : target_(std::move(target)),
      fileName_(std::move(fileName)),
      folder_(std::filesystem::path(target_).parent_path().string()) {
    struct stat existing {};
    const bool exists = ::stat(target_.c_str(), &existing) == 0;
    if (!exists && errno != ENOENT) {
        ThrowSystemError(fileName_, errno);
    }
    if (exists && !S_ISREG(existing.st_mode)) {
        ThrowWriteError(fileName_, S_ISDIR(existing.st_mode) ? "It is a folder" : "It is a device or a pipe");
    }
    if (exists && ((existing.st_mode & kAnyWriteBit) == 0 || ::access(target_.c_str(), W_OK) != 0)) {
        ThrowWriteError(fileName_, "It is write-protected");
    }
    for (int tries = 0; !Create(exists); ++tries) {
        if (errno != EEXIST || tries == kMostTries) {
            ThrowSystemError(fileName_, errno);
        }
    }
    if (exists) {
        CopyFileAttributes(target_, existing, descriptor_.Number());
    }
}

// False, with the reason in errno, where there is no such file now. Between its making and its locking
// another process may sweep it away, which then holds the lock: it is made again.
bool FileBeside::Create(bool isPrivate) {
    name_ = (std::filesystem::path(folder_) / NewName()).string();
    descriptor_ = Descriptor(::open(name_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC,
                                    isPrivate ? kPrivateMode : kNewFileMode));
    if (!descriptor_.IsOpen()) {
        return false;
    }
    ::flock(descriptor_.Number(), LOCK_EX);
    struct stat status {};
    if (::fstat(descriptor_.Number(), &status) == 0 && status.st_nlink == 0) {
        errno = EEXIST;
        return false;
    }
    return true;
}

FileBeside::~FileBeside() {
    if (!isInPlace_ && descriptor_.IsOpen()) {
        ::unlink(name_.c_str());
    }
}

void FileBeside::Write(std::span<const std::uint8_t> bytes) const {
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written = ::write(descriptor_.Number(), bytes.data() + done, bytes.size() - done);
        if (written < 0 && errno != EINTR) {
            ThrowSystemError(fileName_, errno);
        }
        done += written > 0 ? static_cast<std::size_t>(written) : 0;
    }
}

void FileBeside::Flush() const {
    if (::fsync(descriptor_.Number()) != 0) {
        ThrowSystemError(fileName_, errno);
    }
}

void FileBeside::TakePlace() {
    if (::rename(name_.c_str(), target_.c_str()) != 0) {
        ThrowSystemError(fileName_, errno);
    }
    isInPlace_ = true;
    if (!descriptor_.Close()) {
        ThrowSystemError(fileName_, errno);
    }
}

void FileBeside::FlushFolder() const {
    const char* const path = folder_.empty() ? "." : folder_.c_str();
    const Descriptor folder(::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    // Many file systems cannot do it for folders, and some folders may be written but not read.
    if (folder.IsOpen() && ::fsync(folder.Number()) != 0 && (errno == EIO || errno == ENOSPC)) {
        ThrowSystemError(fileName_, errno);
    }
}

void FileBeside::SweepFolder() const noexcept {
    try {
        const std::filesystem::path folder = folder_.empty() ? "." : folder_;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            if (const auto maker = MakerOf(entry.path().filename().native())) {
                RemoveLeftover(entry.path().string(), *maker);
            }
        }
    } catch (const std::exception&) {
        // A folder that cannot be listed is not ours to tidy.
    }
}

} // namespace pictorel
