// Decodes the strips and tiles of a TIFF page into a picture, on all cores.
#pragma once

#include "picture/codecs/tiff/TiffLayout.h"

namespace pictorel::codecs {

// The picture as it is stored: not yet turned upright, HasAlpha() as the pixels have it. What is damaged or
// missing is white. Throws ImagingError(UnsupportedFormat) where nothing at all can be decoded. `tiff` is
// open on the page.
PixelArray DecodeTiff(TiffFile tiff, std::uint64_t directoryOffset, const TiffLayout& layout, ByteView file,
                      ByteView icc);

} // namespace pictorel::codecs
