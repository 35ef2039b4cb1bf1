// Windows and OS/2 bitmaps (.bmp, .dib, .rle).
#pragma once

#include "imaging/codecs/Codec.h"

namespace pictorel::codecs {

bool IsBmp(ByteView file) noexcept;

// Reads the headers from OS/2 1.x to version 5; 1 to 32 bits a pixel, run lengths, bit fields, embedded JPEG
// and PNG.
PixelArray ReadBmp(ByteView file, const ReadOptions& options);

// Writes 24 bits a pixel, bottom row first; transparency is laid over white.
ByteBuffer WriteBmp(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
