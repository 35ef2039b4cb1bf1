// Decodes single strips and tiles of a TIFF page, whole or as far as they go.
#pragma once

#include "picture/codecs/tiff/TiffLayout.h"

#include <cstdint>

namespace pictorel::codecs {

// Decodes with one handle of the library: one object a thread.
class TiffBlockReader {
  public:
    TiffBlockReader(const TiffFile& tiff, const TiffLayout& layout, ByteView file)
        : tiff_(tiff), layout_(layout), file_(file) {}

    // The first `rows` rows of a block in a plane into `out`, which has room for a whole block. Returns how
    // many of them are good; what follows these is undefined.
    int Decode(int block, int plane, int rows, std::uint8_t* out);

  private:
    ByteView PackedBytes(std::uint32_t index);

    const TiffFile& tiff_;
    const TiffLayout& layout_;
    ByteView file_;
    ByteBuffer copy_;
};

// A block in the library's own conversion (YCbCr that is not JPEG's, old-style JPEG): its rows into B, G, R,
// A pixels, `stride` bytes apart; what could not be decoded is white. Returns in how many rows something
// could.
int DecodeConvertedBlock(const TiffFile& tiff, const TiffLayout& layout, int block, std::uint8_t* bgra,
                         std::ptrdiff_t stride);

} // namespace pictorel::codecs
