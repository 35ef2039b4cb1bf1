// JPEG 2000 pictures (.jp2, .jpc, .j2k).
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

bool IsJ2k(ByteView file) noexcept;

// Reads codestreams, bare or in the boxes of a JP2 file: 1 to 31 bits, signed or not, subsampled components,
// palettes, grey, RGB, YCC, CMYK and Lab, alpha, profile, resolution, EXIF. A file cut short shows what was
// decoded of each tile.
PixelArray ReadJ2k(ByteView file, const ReadOptions& options);

// At quality 100 lossless. Writes a bare codestream, which is what the extension promises, where that says it
// all; a picture with transparency, profile, resolution or EXIF needs the boxes of JP2 around it, and
// programs tell the two by their content.
ByteBuffer WriteJ2k(const PixelArray& picture, const WriteOptions& options);

} // namespace pictorel::codecs
