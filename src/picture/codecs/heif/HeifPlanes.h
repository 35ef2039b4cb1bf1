// The planes of a decoded HEIF picture become pixels. Here and not in libheif, which takes the nearest coarse
// chroma sample, on one core.
#pragma once

#include "picture/PixelArray.h"
#include "picture/codecs/Cicp.h"

struct heif_image;

namespace pictorel::codecs {

// What the decoder left: planes of Y, Cb and Cr, of R, G and B, or of Y alone, and perhaps alpha. Refuses
// (UnsupportedFormat) planes of other kinds or of sizes that do not belong together. The profile describes
// the colours that come out. Rows are worked on all cores.
PixelArray PictureOfPlanes(const heif_image* image, const Cicp& space, ByteView iccProfile);

} // namespace pictorel::codecs
