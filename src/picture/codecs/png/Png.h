// Portable Network Graphics (.png).
#pragma once

#include "picture/codecs/Codec.h"

#include <string_view>

namespace pictorel::codecs {

// What stands before the packet in a text chunk ("iTXt") with XMP: keyword, not compressed, no language.
inline constexpr std::string_view kPngXmpKeyword("XML:com.adobe.xmp\0\0\0\0\0", 22);

bool IsPng(ByteView file) noexcept;

// Reads every colour type, depth and interlace; of an animated file the default picture.
PixelArray ReadPng(ByteView file, const ReadOptions& options);

// Writes RGB, or RGBA where some pixel is not opaque, 8 bits a sample, with resolution, EXIF, XMP and
// profile.
ByteBuffer WritePng(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
