// A TIFF file in memory, opened by libtiff without messages and within bounds.
#pragma once

#include "imaging/codecs/Codec.h"

#include <tiffio.h>

#include <memory>

namespace pictorel::codecs {

struct CloseTiff {
    void operator()(TIFF* tiff) const noexcept { TIFFClose(tiff); }
};
using TiffHandle = std::unique_ptr<TIFF, CloseTiff>;

// The bytes behind an open handle, which must outlive it.
struct TiffMemory {
    ByteView file;      // being read
    ByteBuffer written; // or being written
    std::uint64_t position = 0;
    bool isWriting = false;
    bool isOutOfMemory = false; // while writing
};

// Null where libtiff finds no TIFF file. `mode` as in TIFFOpen.
TiffHandle OpenTiff(TiffMemory& memory, const char* mode);

} // namespace pictorel::codecs
