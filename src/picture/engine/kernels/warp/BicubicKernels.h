// Bicubic interpolation of runs of points anywhere in a picture.
#pragma once

#include "picture/engine/kernels/base/CubicWeights.h"
#include "picture/engine/kernels/warp/SampleRun.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// The weights of the 4 x 4 neighbours are products of two, rounded to 1/2^13 so that they still fit a signed
// 16-bit number: the sum over all is off by a quarter of a level at most.
inline constexpr int kProductBits = 13;
inline constexpr int kProductShift = 2 * kWeightBits - kProductBits;

// The product of a weight and one whole, as the weights of neighbours are rounded.
constexpr std::int32_t HalvedWeight(std::int16_t weight) {
    static_assert(kProductShift - kWeightBits == 1);
    return (weight + 1) >> 1;
}

// With alpha, the sums are of colour times alpha and of 255 times alpha. Below half a level of alpha there is
// nothing to be seen and no colour to speak of.
inline constexpr float kPerAlphaLevel = 1.0F / (255 << kProductBits);
inline constexpr float kLeastVisible = 255 << (kProductBits - 1);

// Interpolates with the cubic convolution kernel of Keys ("Cubic convolution interpolation for digital image
// processing", 1981) for a = -0.5: exact at pixel centres. `pixels` is the top left pixel of rows `stride`
// bytes apart; every point must have its 4 x 4 neighbours there. Rounded to nearest and clamped.
struct BicubicKernels {
    void (*SampleOpaque)(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                         std::uint8_t* to);

    // For pictures with alpha: colours are weighted by it.
    void (*SampleWithAlpha)(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                            std::uint8_t* to);

    static const BicubicKernels& Plain();
    static const BicubicKernels& Best();
};

} // namespace pictorel::engine
