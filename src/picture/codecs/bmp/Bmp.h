// Windows and OS/2 bitmaps (.bmp, .dib, .rle).
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

bool IsBmp(ByteView file) noexcept;

// Reads the headers from OS/2 1.x to version 5; 1 to 64 bits a pixel, run lengths, bit fields, embedded JPEG
// and PNG; of an OS/2 array of bitmaps the first. Pixels that run lengths leave out are transparent.
PixelArray ReadBmp(ByteView file, const ReadOptions& options);

// A bitmap without its file header, as other files hold it: `info` begins with the information header and
// goes on with masks and palette, `bits` are the pixels. Throws as a codec's `read` does.
PixelArray ReadDib(ByteView info, ByteView bits);

// Writes 24 bits a pixel, bottom row first; transparency is laid over white.
ByteBuffer WriteBmp(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
