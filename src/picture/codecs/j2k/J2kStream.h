// The headers of a JPEG 2000 codestream, weighed before a library takes memory for them.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstdint>
#include <vector>

namespace pictorel::codecs {

struct J2kComponent {
    int bits = 8;
    bool isSigned = false;
    std::int64_t stepX = 1; // of the reference grid, from sample to sample
    std::int64_t stepY = 1;

    // Of a sample where the library hands them out: 1, 2 or 4, in native order.
    int SampleBytes() const { return bits <= 8 ? 1 : (bits <= 16 ? 2 : 4); }
};

// A rectangle; x1 and y1 lie just outside.
struct J2kArea {
    std::int64_t x0 = 0;
    std::int64_t y0 = 0;
    std::int64_t x1 = 0;
    std::int64_t y1 = 0;

    std::int64_t Width() const { return x1 - x0; }
    std::int64_t Height() const { return y1 - y0; }
    // Of the samples `stepX` and `stepY` apart that lie in this area.
    J2kArea Sampled(std::int64_t stepX, std::int64_t stepY) const;
};

struct J2kStream {
    J2kArea grid; // the picture on the reference grid
    std::vector<J2kComponent> components;
    std::int64_t stepX = 1; // from pixel to pixel: that of the finest component
    std::int64_t stepY = 1;
    int levels = 0;  // how often a tile is halved at most
    ByteView usable; // the codestream as far as its tile parts make sense
    // Where the length of the last tile part stands when the file holds less of it; 0: all parts are whole.
    // The library would take memory for the length claimed.
    std::size_t cutLengthAt = 0;
    std::uint32_t trueLength = 0;
    bool lacksEnd = false;    // the file ends with a whole tile part, without the marker that says so
    double presentOfLast = 1; // of the tile whose part is the last one, the share that the file holds

    // A part of the reference grid in pixels of the picture, from its upper left corner on.
    J2kArea PixelsOf(const J2kArea& part) const;
};

// Reads every header, of the codestream and of its tile parts, and checks that the memory and the work they
// ask for are justified by the length of the file. Throws ImagingError (UnsupportedFormat, TooLarge).
J2kStream ReadJ2kStream(ByteView codestream);

} // namespace pictorel::codecs
