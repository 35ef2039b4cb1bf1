// The random numbers of a row of pixels, added to the pixels or added up.
#pragma once

#include <cstdint>

namespace pictorel::engine {

// Each channel of a pixel takes ten of the pixel's random bits: one of 1024 evenly spaced steps.
inline constexpr int kNoiseSteps = 1024;

// Row `y` of a picture. Rows are those of a PixelArray: they are read and written in blocks of up to 64
// bytes. `streams` tells to write past the cache.
struct NoiseRow {
    const std::uint8_t* in;
    std::uint8_t* out;
    int width;
    int y;
    float perStep; // levels from one step to the next but one: steps lie symmetrically about 0
    bool streams;
};

// The sums of the steps of one column of pixels: blue, green, red; the fourth number is 0.
inline constexpr int kNoiseSumNumbers = 4;

// AddNoise: adds (2 step - 1023) perStep to each colour component, rounded and clamped.
// SumNoise: for each column 0 <= x < width, the sum over firstRow <= y < endRow of the steps at (x, y). At
//     most 2^15 rows; `sums` has room for a multiple of 64 columns.
namespace scalar {
void AddNoise(const NoiseRow& row);
void SumNoise(int firstRow, int endRow, int width, std::int32_t* sums);
} // namespace scalar
namespace simd { // the same with the best vectors that the processor has
void AddNoise(const NoiseRow& row);
void SumNoise(int firstRow, int endRow, int width, std::int32_t* sums);
} // namespace simd

} // namespace pictorel::engine
