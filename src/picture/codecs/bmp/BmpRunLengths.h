// The run-length compressed pixels of bitmap files: 4, 8 and (OS/2) 24 bits.
#pragma once

#include "picture/codecs/bmp/BmpHeader.h"

namespace pictorel::codecs {

// Decodes header.pixels into a picture of the header's size. Pixels that the data jumps over, or leaves out
// when it says that it ends, are transparent. Runs are cut at the end of their row; where data is missing the
// rest is white.
void DecodeBmpRunLengths(const BmpHeader& header, PixelArray& picture);

} // namespace pictorel::codecs
