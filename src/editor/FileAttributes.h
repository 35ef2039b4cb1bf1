// What a file has beside its bytes: whose it is, who may do what with it, and its extended attributes.
#pragma once

#include <sys/stat.h>

#include <string>

namespace pictorel {

// Gives the file behind `descriptor` what the file `from` has: its group, access rights, access-control list
// and extended attributes, as far as this user may set them and the file system holds them. `status` is that
// of `from`. Never fails: a picture is not lost for an attribute.
void CopyFileAttributes(const std::string& from, const struct stat& status, int descriptor) noexcept;

} // namespace pictorel
