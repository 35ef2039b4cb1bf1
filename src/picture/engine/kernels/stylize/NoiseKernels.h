// The random numbers of a row of pixels, added to the pixels or added up.
#pragma once

#include <cstdint>

namespace pictorel::engine {

// Each channel of a pixel takes ten of the pixel's random bits: one of 1024 evenly spaced steps.
inline constexpr int kNoiseStepBits = 10;
inline constexpr int kNoiseSteps = 1 << kNoiseStepBits;

// Noise is in 1/64 of a level.
inline constexpr int kNoiseBits = 6;
inline constexpr int kNoiseUnit = 1 << kNoiseBits;

// A part of row `y` of a picture, from its column `x` on. Rows are those of a PixelArray: they are read and
// written in blocks of up to 64 bytes. `streams` tells to write past the cache.
struct NoiseRow {
    const std::uint8_t* in;
    std::uint8_t* out;
    int width;
    int x;
    int y;
    std::int16_t amplitude; // of the noise, in 1/kNoiseUnit of a level, up to 255 levels
    bool streams;
};

// The sums of the steps of one column of pixels: blue, green, red; the fourth number is 0.
inline constexpr int kNoiseSumNumbers = 4;

struct NoiseKernels {
    // Adds (2 step - 1023) / 1024 of the amplitude, rounded to the unit, to each colour component, then
    // rounds and clamps.
    void (*AddNoise)(const NoiseRow& row);

    // For each of `width` columns from firstColumn on, the sum over firstRow <= y < endRow of the steps at
    // (x, y). At most 2^15 rows; `sums` has room for a multiple of 64 columns.
    void (*SumNoise)(int firstRow, int endRow, int firstColumn, int width, std::int32_t* sums);

    static const NoiseKernels& Plain();
    static const NoiseKernels& Best();
};

} // namespace pictorel::engine
