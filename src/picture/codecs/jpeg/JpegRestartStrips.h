// Cuts the scan of a JPEG file at its restart markers into strips that can be decoded apart from each other.
#pragma once

#include "picture/codecs/jpeg/JpegSegments.h"

#include <vector>

namespace pictorel::codecs {

struct JpegStrip {
    int firstRow; // of the picture
    int rows;
    ByteView scan; // entropy-coded bytes, without the restart markers around them
};

struct JpegStripPlan {
    std::vector<JpegStrip> strips; // empty where the file must be decoded in one go

    // The file's header for a strip of so many rows.
    ByteBuffer HeadFor(int rows) const;

    ByteBuffer head;
    std::size_t heightOffset = 0; // in `head`
};

// A plan only where strips give exactly the pixels that decoding in one go gives: one Huffman-coded
// sequential scan without vertical subsampling (whose upsampling would look across the cuts), restart markers
// at the starts of rows, all of them there and in order.
JpegStripPlan PlanStrips(ByteView file, const std::vector<JpegSegment>& segments);

} // namespace pictorel::codecs
