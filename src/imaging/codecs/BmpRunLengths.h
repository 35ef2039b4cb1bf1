// The run-length compressed pixels of bitmap files: 4, 8 and (OS/2) 24 bits.
#pragma once

#include "imaging/codecs/BmpHeader.h"

namespace pictorel::codecs {

// Decodes header.pixels into a picture of the header's size that is white already; pixels that the data jumps
// over stay so. Runs are cut at the end of their row, and damaged or missing data ends the picture.
void DecodeBmpRunLengths(const BmpHeader& header, PixelArray& picture);

} // namespace pictorel::codecs
