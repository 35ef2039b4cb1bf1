// The run-length compressed pixels of bitmap files: 4, 8 and (OS/2) 24 bits.
#pragma once

#include "picture/codecs/bmp/BmpHeader.h"

namespace pictorel::codecs {

// Decodes header.pixels into a picture of the header's size. Pixels that the data jumps over, or leaves out
// when it says that it ends, are transparent. Runs are cut at the end of their row; where data is missing the
// rest is white, and noted. Refuses data that names no pixel.
void DecodeBmpRunLengths(const BmpHeader& header, PixelArray& picture);

// How many pixels the data names at most, for asking whether a picture of the claimed size is meant. The rest
// of it is jumped over: that costs four bytes for 65,000 of them.
std::int64_t PixelsNamedByRunLengths(const BmpHeader& header);

} // namespace pictorel::codecs
