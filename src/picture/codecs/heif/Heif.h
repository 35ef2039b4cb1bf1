// HEIF pictures: HEIC of telephones, AVIF of the web (.heic, .heif, .avif): read only.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

bool IsHeif(ByteView file) noexcept;

// Reads the primary picture of a file, of HEVC or AV1, whole or in tiles: 8 to 16 bits, grey and colour with
// chroma of every fineness, transparency, ICC profile or code points, turns, mirrors and clips, EXIF and XMP.
// A file whose coded picture is not whole is refused.
PixelArray ReadHeif(ByteView file, const ReadOptions& options);

} // namespace pictorel::codecs
