// Portable Network Graphics (.png).
#pragma once

#include "imaging/codecs/Codec.h"

namespace pictorel::codecs {

bool IsPng(ByteView file) noexcept;

// Reads every colour type, depth and interlace; of an animated file the default picture.
PixelArray ReadPng(ByteView file, const ReadOptions& options);

// Writes RGB, or RGBA where some pixel is not opaque, 8 bits a sample, with resolution, EXIF and profile.
ByteBuffer WritePng(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
