// JPEG files: every kind that libjpeg decodes, and our own working files among them.
#pragma once

#include "imaging/codecs/Codec.h"

namespace pictorel::codecs {

// As the members of Codec ask for. Files are written without chroma subsampling and with a restart marker
// after every row of blocks, so that they can be read back on all cores.
bool IsJpeg(ByteView file) noexcept;
PixelArray ReadJpeg(ByteView file, const ReadOptions& options);
ByteBuffer WriteJpeg(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
