// Counts of the components at both ends of the range, without a histogram.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Four limits for dark components and four for bright ones, which are counted by 255 less their value; each
// for blue, green and red (and one that nothing is counted for).
inline constexpr std::size_t kLimitsPerEnd = 4;
using EndLimits = std::array<std::array<std::uint8_t, 4>, 2 * kLimitsPerEnd>;
using EndCounts = std::array<std::array<std::uint64_t, 3>, 2 * kLimitsPerEnd>;

struct EndKernels {
    // counts[...][c] += how many of the row's components c lie below limits[...][c]. The row, of `width`
    // pixels, begins on a 64-byte boundary.
    void (*CountEnds)(const std::uint8_t* row, int width, const EndLimits& limits, EndCounts& counts);

    static const EndKernels& Plain();
    static const EndKernels& Best();
};

} // namespace pictorel::engine
