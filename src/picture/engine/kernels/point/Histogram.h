// Counts of the values in a picture.
#pragma once

#include "picture/PixelArray.h"

#include <array>
#include <cstdint>
#include <numeric>

namespace pictorel::engine {

using Histogram = std::array<std::uint64_t, 256>;

struct ColourHistograms {
    Histogram blue{};
    Histogram green{};
    Histogram red{};
};

// Pixels that cannot be seen (alpha 0 in a picture that has alpha) are not counted: their colour is
// arbitrary.
Histogram LumaHistogram(const PixelArray& source);
ColourHistograms ChannelHistograms(const PixelArray& source, int rowStep = 1); // of every so manieth row

inline std::uint64_t Total(const Histogram& histogram) {
    return std::accumulate(histogram.begin(), histogram.end(), std::uint64_t{0});
}

} // namespace pictorel::engine
