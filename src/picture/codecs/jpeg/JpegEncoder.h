// Encodes a picture as JPEG: strips on all cores, joined by restart markers into the same bytes that encoding
// in one go with a restart marker after every row of blocks gives.
#pragma once

#include "picture/codecs/jpeg/JpegSegments.h"

#include <vector>

namespace pictorel::codecs {

enum class JpegPixels {
    OverWhite, // Y Cb Cr without subsampling, transparency laid over white; what other programs expect
    AsTheyAre, // R, G, B as they are: no level moves by more than 2 at quality 100
};

struct JpegSettings {
    int quality = 100; // 1..100
    JpegPixels pixels = JpegPixels::OverWhite;
};

// Gives `sink` a complete file with these segments after its own first ones; calls come from several threads,
// one at a time. Throws ImagingError, and what the sink throws.
void EncodeJpeg(const PixelArray& picture, const JpegSettings& settings,
                const std::vector<JpegMarker>& markers, const ByteSink& sink);

} // namespace pictorel::codecs
