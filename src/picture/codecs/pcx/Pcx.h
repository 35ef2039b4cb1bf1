// ZSoft Paintbrush pictures (.pcx).
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

bool IsPcx(ByteView file) noexcept;

// Reads versions 0, 2, 3, 4 and 5: up to 8 bits in any division into planes, 24 bits and 32 with alpha; the
// palettes of CGA, EGA and VGA; run lengths that cross the ends of planes and rows.
PixelArray ReadPcx(ByteView file, const ReadOptions& options);

// Writes version 5, three planes of 8 bits, run lengths; transparency is laid over white.
ByteBuffer WritePcx(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
