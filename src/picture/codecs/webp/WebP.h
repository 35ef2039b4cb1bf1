// WebP pictures (.webp): read only.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

bool IsWebP(ByteView file) noexcept;

// Reads lossy and lossless pictures with their transparency, bare or in the extended container (profile,
// EXIF with its orientation, XMP); of an animation the first frame at its place on the canvas, transparent
// around it. A file cut short shows the rows that were decoded, white below.
PixelArray ReadWebP(ByteView file, const ReadOptions& options);

} // namespace pictorel::codecs
