// The exotic kinds of TIFF pictures, brought to R, G, B, A by libtiff itself.
#pragma once

#include "imaging/codecs/TiffLayout.h"

namespace pictorel::codecs {

// Decodes strip by strip or tile by tile into a picture that is white already; what is damaged stays so.
// False where nothing could be decoded. Throws ImagingError(UnsupportedFormat).
bool ReadTiffRgba(TIFF* tiff, const TiffLayout& layout, PixelArray& picture);

} // namespace pictorel::codecs
