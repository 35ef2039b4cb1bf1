// Tagged Image File Format (.tif, .tiff and the Photo-Paint files that are TIFF inside).
#pragma once

#include "imaging/codecs/Codec.h"

namespace pictorel::codecs {

bool IsTiff(ByteView file) noexcept;

// Reads the first full-resolution picture of the file: strips or tiles, any photometric kind but raw sensor
// data, 1 to 64 bits a sample, every compression that libtiff has. Its EXIF directory is not kept.
PixelArray ReadTiff(ByteView file, const ReadOptions& options);

// Writes RGB, or RGB with unassociated alpha where some pixel is not opaque, deflated without loss, with
// resolution and profile.
ByteBuffer WriteTiff(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
