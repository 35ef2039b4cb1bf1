// Faults of JPEG files that the library gives up over and that can be put right before decoding.
#pragma once

#include "picture/codecs/jpeg/JpegSegments.h"

#include <optional>
#include <vector>

namespace pictorel::codecs {

// A copy of the file that has one start and tells its height: some begin twice, or with garbage, and some say
// only behind the first scan how many rows there are. Nothing where the file needs no change, or where it
// cannot be helped.
std::optional<ByteBuffer> MendedJpeg(ByteView file, const std::vector<JpegSegment>& segments);

// A copy that no longer announces restart markers, of a file that announces them and has not one. Nothing for
// all other files.
std::optional<ByteBuffer> WithoutRestartInterval(ByteView file, const std::vector<JpegSegment>& segments);

} // namespace pictorel::codecs
