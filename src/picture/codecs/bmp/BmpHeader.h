// The headers of a bitmap file, whatever their version, brought to one form.
#pragma once

#include "picture/codecs/Codec.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace pictorel::codecs {

enum class BmpCompression { None, Rle8, Rle4, Rle24, Huffman, BitFields, EmbeddedFile };

struct BmpHeader {
    int width = 0;
    int height = 0;
    bool topDown = false;
    int bits = 0; // a pixel: 1, 2, 4, 8, 16, 24, 32 or 64
    BmpCompression compression = BmpCompression::None;
    std::array<std::uint32_t, 4> masks{}; // of red, green, blue, alpha; 0 where a pixel has none
    std::array<std::array<std::uint8_t, 4>, 256> palette{}; // B, G, R, 255; black beyond the file's own
    ByteView pixels;                                        // from the first pixel to the end of the file
    double dotsPerInchX = 0;
    double dotsPerInchY = 0;
    ByteBuffer icc; // the embedded profile, or one made from calibrated end points; empty where sRGB

    std::size_t FileRowBytes() const noexcept {
        return (static_cast<std::size_t>(width) * static_cast<std::size_t>(bits) + 31) / 32 * 4;
    }
};

// Throws ImagingError(UnsupportedFormat, TooLarge).
BmpHeader ReadBmpHeader(ByteView file);

// Of a bitmap inside another file: `info` begins with the information header and goes on with masks and
// palette, `bits` are the pixels, and have to outlive the result. Throws as above.
BmpHeader ReadDibHeader(ByteView info, ByteView bits);

} // namespace pictorel::codecs
