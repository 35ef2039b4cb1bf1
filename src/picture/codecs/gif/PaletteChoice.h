// The few colours that serve a picture best.
#pragma once

#include "picture/codecs/gif/ColourHistogram.h"

#include <array>
#include <cstdint>
#include <vector>

namespace pictorel::codecs {

using Bgr = std::array<std::uint8_t, 3>;

// At most `count` colours, 256 or fewer: the histogram is cut into boxes, each time the one of largest
// squared error across its longest axis, and the boxes' means are then settled by k-means.
std::vector<Bgr> ChoosePalette(const ColourHistogram& histogram, int count);

} // namespace pictorel::codecs
