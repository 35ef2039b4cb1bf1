// TIFF files (.tif, .tiff): every kind that libtiff decodes, classic and BigTIFF.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// As the members of Codec ask for. Of several pages the first in full resolution is read. Files are written
// lossless: 8 bits a sample, Deflate with the horizontal predictor, EXIF, profile and resolution attached.
bool IsTiff(ByteView file) noexcept;
PixelArray ReadTiff(ByteView file, const ReadOptions& options);
ByteBuffer WriteTiff(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
