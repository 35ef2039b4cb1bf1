// The random numbers of a row of pixels, added to the pixels or added up.
#pragma once

#include <cstdint>

namespace pictorel::engine {

// Each channel of a pixel takes ten of the pixel's random bits: one of 1024 evenly spaced steps.
inline constexpr int kNoiseSteps = 1024;

inline constexpr int kNoiseUnit = 64;

// Row `y` of a picture. Rows are those of a PixelArray: they are read and written in blocks of up to 64
// bytes. `streams` tells to write past the cache.
struct NoiseRow {
    const std::uint8_t* in;
    std::uint8_t* out;
    int width;
    int y;
    std::int16_t amplitude; // of the noise, in 1/kNoiseUnit of a level, up to 255 levels
    bool streams;
};

// The sums of the steps of one column of pixels: blue, green, red; the fourth number is 0.
inline constexpr int kNoiseSumNumbers = 4;

// AddNoise: adds (2 step - 1023) / 1024 of the amplitude, rounded to the unit, to each colour component, then
//     rounds and clamps.
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
