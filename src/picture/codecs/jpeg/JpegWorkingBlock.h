// What a JPEG file cannot hold of a picture, and rides in private segments of the editor's own working files:
// transparency, metadata and reduction.
#pragma once

#include "picture/codecs/jpeg/JpegSegments.h"

#include <optional>
#include <vector>

namespace pictorel::codecs {

// The segments to write. The alpha plane is compressed on all cores.
std::vector<JpegMarker> WorkingMarkers(const PixelArray& picture);

// The block that the segments carry, joined; nothing where there is none or a part is missing.
std::optional<ByteBuffer> FindWorkingBlock(const std::vector<JpegSegment>& segments);

// Gives a picture, of which only the colours were decoded, what the block says. Throws
// ImagingError(UnsupportedFormat) where the block is damaged or of another picture size.
void ApplyWorkingBlock(const ByteBuffer& block, PixelArray& picture);

} // namespace pictorel::codecs
