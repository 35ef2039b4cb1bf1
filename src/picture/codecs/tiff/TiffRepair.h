// TIFF directories that the library refuses over a slip of their writer, written anew.
#pragma once

#include "picture/codecs/tiff/TiffStructure.h"

#include <optional>

namespace pictorel::codecs {

struct RepairedTiff {
    ByteBuffer file; // the given one, with the new directory behind it
    std::uint64_t directoryOffset = 0;
};

// Makes up for missing or zero counts of strips, rows per strip, compression and plane order, for signed or
// otherwise odd types of number, for lists of the wrong length, and for unknown kinds of extra samples; tags
// that have no part in decoding are left out. Nothing where the file is too large or tells too little.
std::optional<RepairedTiff> RepairTiff(const TiffStructure& structure, const TiffDirectory& page,
                                       ByteView file);

} // namespace pictorel::codecs
