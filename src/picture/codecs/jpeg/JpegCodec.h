// JPEG files: every kind that libjpeg decodes, and our own working files among them.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// As the members of Codec ask for. Files are written without chroma subsampling and with a restart marker
// after every row of blocks, so that they can be read back on all cores.
bool IsJpeg(ByteView file) noexcept;
PixelArray ReadJpeg(ByteView given, const ReadOptions& options);
ByteBuffer WriteJpeg(const PixelArray& picture, const WriteOptions& options);

// WriteJpeg of a working file without gathering it in memory first: giving the parts on as they come takes a
// tenth of the time. Calls of the sink come from several threads, one at a time.
void WriteWorkingJpeg(const PixelArray& picture, const ByteSink& sink);

} // namespace pictorel::codecs
