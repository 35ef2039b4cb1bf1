// Sun raster pictures (.ras).
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

bool IsRas(ByteView file) noexcept;

// Reads types 0 to 3: 1, 4, 8, 24 and 32 bits a pixel, colour maps, run lengths; rows with or without
// padding.
PixelArray ReadRas(ByteView file, const ReadOptions& options);

// Writes 24 bits a pixel as they are (type 1): the one form that every program reads, whatever the width. In
// run lengths they see two orders of the colours, and odd rows with and without their padding. Transparency
// is laid over white.
ByteBuffer WriteRas(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
