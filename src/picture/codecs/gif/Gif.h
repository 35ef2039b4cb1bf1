// Graphics Interchange Format (.gif).
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

bool IsGif(ByteView file) noexcept;

// Reads the first frame on its logical screen; what the frame does not cover is transparent.
PixelArray ReadGif(ByteView file, const ReadOptions& options);

// Writes one frame in the 256 colours that serve the picture best (exactly, where it has no more than that),
// one of them transparent where pixels with alpha below 128 ask for it.
ByteBuffer WriteGif(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
