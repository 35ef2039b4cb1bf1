// The Huffman compressed pixels of OS/2 bitmap files.
#pragma once

#include "picture/codecs/bmp/BmpHeader.h"

namespace pictorel::codecs {

// The picture of header.pixels, one bit a pixel in the codes of facsimile machines (ITU-T T.4,
// one-dimensional): white runs are the first colour of the palette, black ones the second. Throws
// ImagingError(UnsupportedFormat) where nothing can be decoded.
PixelArray DecodeBmpHuffman(const BmpHeader& header);

} // namespace pictorel::codecs
