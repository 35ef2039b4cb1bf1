// Reading whole files, and replacing files so that a failure half-way leaves the old one whole.
#pragma once

#include "picture/codecs/Codec.h"

#include <functional>
#include <optional>
#include <string>

namespace pictorel {

// The bytes of a regular file; nothing where it is missing, unreadable, a folder or a device, or too large
// for any picture within the limits. Throws ImagingError(OutOfMemory).
std::optional<codecs::ByteBuffer> ReadWholeFile(const std::string& fileName);

enum class Durability {
    Working, // survives this process, not a power failure
    Lasting, // on the disk before the old file goes, and so is its name before this returns
};

// Writes the bytes beside the file and renames them into its place, keeping the access rights, access-control
// list and extended attributes of a file that was there and following a link to it. Throws
// ImagingError(FileAccess) that says why, with nothing left behind. What a killed process left of a lasting
// file goes with the next one in that folder.
void ReplaceFile(const std::string& fileName, codecs::ByteView bytes, Durability durability);

// The same with the bytes that `write` gives its sink. What it throws goes on, with the old file in place.
void ReplaceFile(const std::string& fileName, const std::function<void(const codecs::ByteSink& sink)>& write,
                 Durability durability);

} // namespace pictorel
