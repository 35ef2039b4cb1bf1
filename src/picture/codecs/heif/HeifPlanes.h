// The planes of a decoded HEIF picture become pixels. Here and not in libheif, which takes the nearest coarse
// chroma sample, on one core.
#pragma once

#include "picture/PixelArray.h"
#include "picture/codecs/Codec.h"

struct heif_image;

namespace pictorel::codecs {

// What the library left: planes of Y, Cb and Cr by BT.601 over the full range, of R, G and B, or of Y alone,
// and perhaps alpha. `isFullRange` tells of greys. Refuses (UnsupportedFormat) planes of other kinds or of
// sizes that do not belong together. The profile describes the colours that come out. Rows are worked on all
// cores.
PixelArray PictureOfPlanes(const heif_image* image, bool isFullRange, ByteView iccProfile);

} // namespace pictorel::codecs
