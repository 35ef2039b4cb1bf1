// The random numbers of many pixels added up, for the noise that a reduced copy shows.
#pragma once

#include <cstdint>

namespace pictorel::engine {

// Each channel of a pixel takes ten of the pixel's random bits: one of 1024 evenly spaced steps.
inline constexpr int kNoiseSteps = 1024;

// Where the sums of the steps of each column go: `width` numbers each, with room for a multiple of 64.
struct NoiseSums {
    std::int32_t* blue;
    std::int32_t* green;
    std::int32_t* red;
};

// For each column 0 <= x < width: the sum over firstRow <= y < endRow of the steps at (x, y). At most 2^20
// rows.
namespace scalar {
void SumNoise(int firstRow, int endRow, int width, const NoiseSums& sums);
}
namespace simd { // the same with the best vectors that the processor has
void SumNoise(int firstRow, int endRow, int width, const NoiseSums& sums);
}

} // namespace pictorel::engine
