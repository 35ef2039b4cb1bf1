// Truevision Targa pictures (.tga).
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// The format has no signature at its start: a file is taken for one where every field of the header makes
// sense together with the others. Ask after all formats that have one.
bool IsTga(ByteView file) noexcept;

// Reads types 1, 2, 3, 9, 10 and 11: mapped, true colour and grey, raw or run lengths, 8 to 32 bits, rows and
// columns in either direction.
PixelArray ReadTga(ByteView file, const ReadOptions& options);

// Writes run lengths, 24 bits a pixel, or 32 where there is transparency, with the footer of version 2 that
// says what the alpha means.
ByteBuffer WriteTga(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
