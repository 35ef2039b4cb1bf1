// JPEG XL pictures (.jxl): read only.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

bool IsJxl(ByteView file) noexcept;

// Reads codestreams, bare or in boxes: 1 to 32 bits and float, grey and colour, transparency, profile, EXIF
// and XMP; the first picture of an animation, all layers of a layered one laid together. A file that is cut
// short or damaged shows its coarser steps and the parts that were decoded.
PixelArray ReadJxl(ByteView file, const ReadOptions& options);

} // namespace pictorel::codecs
