// Access rights and extended attributes of a file that takes another's place, see FileAttributes.h.
#include "editor/FileAttributes.h"

#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <exception>
#include <string_view>
#include <vector>

namespace pictorel {
namespace {

constexpr mode_t kAccessBits = 07777;
constexpr const char* kAccessControlList = "system.posix_acl_access";

// True of the old content alone.
constexpr std::array<std::string_view, 3> kOfContent{"security.ima", "security.evm", "security.capability"};

std::vector<char> NamesOf(const std::string& file) {
    const ssize_t bytes = ::listxattr(file.c_str(), nullptr, 0);
    std::vector<char> names(bytes > 0 ? static_cast<std::size_t>(bytes) : 0);
    const ssize_t listed = ::listxattr(file.c_str(), names.data(), names.size());
    names.resize(listed > 0 ? static_cast<std::size_t>(listed) : 0);
    return names; // each ends in a zero
}

void CopyAttribute(const std::string& from, const char* name, int descriptor) {
    const ssize_t bytes = ::getxattr(from.c_str(), name, nullptr, 0);
    if (bytes < 0 || std::find(kOfContent.begin(), kOfContent.end(), name) != kOfContent.end()) {
        return;
    }
    std::vector<char> value(static_cast<std::size_t>(bytes));
    if (::getxattr(from.c_str(), name, value.data(), value.size()) == bytes) {
        ::fsetxattr(descriptor, name, value.data(), value.size(), 0);
    }
}

} // namespace

void CopyFileAttributes(const std::string& from, const struct stat& status, int descriptor) noexcept {
    // A new owner takes rights away and a list sets them, so the order matters. What the folder gives every
    // new file must not widen the rights of the one that was there.
    if (::fchown(descriptor, status.st_uid, status.st_gid) != 0) {
        static_cast<void>(::fchown(descriptor, static_cast<uid_t>(-1), status.st_gid)); // often not allowed
    }
    ::fremovexattr(descriptor, kAccessControlList);
    ::fchmod(descriptor, status.st_mode & kAccessBits);
    try {
        const std::vector<char> names = NamesOf(from);
        for (std::size_t i = 0; i < names.size(); i += std::string_view(&names[i]).size() + 1) {
            CopyAttribute(from, &names[i], descriptor);
        }
    } catch (const std::exception&) {
        // No memory for a few names: the rights are set, and the picture matters more than the rest.
    }
}

} // namespace pictorel
