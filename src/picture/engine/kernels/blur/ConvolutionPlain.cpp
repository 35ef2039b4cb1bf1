// Convolution with a symmetric kernel as plain loops, see ConvolutionKernels.h.
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/blur/ConvolutionKernels.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

int Average(int a, int b) {
    return (a + b + 1) / 2;
}

// The sum of the weighted taps, at(k) for k from 0, the centre in the middle; `rounding` is added to each
// product in 1/kFixedUnit.
template <class Tap>
int WeightedSum(const HalfKernel& kernel, int rounding, const Tap& at) {
    const auto weighted = [&](int value, std::size_t k) {
        return (value * kernel[k] + rounding) / kFixedUnit;
    };
    const std::size_t centre = kernel.size() - 1;
    int sum = weighted(at(centre), 0);
    for (std::size_t k = 1; k < kernel.size(); ++k) {
        sum += weighted(Average(at(centre - k), at(centre + k)), k);
    }
    return sum;
}

// As much is added to a sum of products rounded down as does not go beyond 16 bits where all taps are 65535.
// It is enough for the sum not to fall below that of the taps' lower bytes.
int NeighbourCount(const HalfKernel& kernel) {
    return static_cast<int>(kernel.size()) - 1;
}

std::uint8_t Sharpened(int original, int blurred, int share) {
    const int difference = original * (kOpaqueUnit / 2) - blurred / 2;
    const int added = FixedProduct(difference, share); // in 1/32 of a level
    return static_cast<std::uint8_t>(
        std::clamp(std::clamp(original * 32 + 16 + added, -32768, 32767) >> 5, 0, 255));
}

void Convolve(const Wide* const* taps, const HalfKernel& kernel, Wide* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] =
            static_cast<Wide>(WeightedSum(kernel, kFixedUnit / 2, [&](std::size_t k) { return taps[k][i]; }));
    }
}

void ConvolveAlong(const Wide* in, const HalfKernel& kernel, Wide* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto tap = [&](std::size_t k) { return in[i + k * kWidesPerPixel]; };
        out[i] = static_cast<Wide>(WeightedSum(kernel, kFixedUnit / 2, tap));
    }
}

void ConvolveAcross(const std::uint8_t* in, const HalfKernel& kernel, int width, Wide* out) {
    Wide* const upper = out + HalfLength(width);
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); ++i) {
        const auto tap = [&](std::size_t k) { return in + 2 * i + k * kComponents; };
        const int lower = WeightedSum(kernel, 0, [&](std::size_t k) { return tap(k)[0] * kOpaqueUnit; });
        // Two components as one number, which saves parting them.
        const int both =
            WeightedSum(kernel, 0, [&](std::size_t k) { return tap(k)[1] * kOpaqueUnit + tap(k)[0]; });
        out[i] = static_cast<Wide>(lower + NeighbourCount(kernel));
        upper[i] = static_cast<Wide>(both + NeighbourCount(kernel) - lower / kOpaqueUnit);
    }
}

void ConvolveToPixels(const Wide* const* taps, const HalfKernel& kernel, const PixelTarget& target) {
    const std::size_t half = HalfLength(target.width);
    for (std::size_t i = 0; i < static_cast<std::size_t>(target.width) * kComponents; ++i) {
        const std::size_t at = i / 2 + i % 2 * half;
        // Both convolutions together take away one unit more on average than has been added.
        const int blurred = WeightedSum(kernel, 0, [&](std::size_t k) { return taps[k][at]; }) + 1;
        target.pixels[i] = target.share == 0
                               ? static_cast<std::uint8_t>((blurred + kOpaqueUnit / 2) / kOpaqueUnit)
                               : Sharpened(target.original[i], blurred, target.share);
    }
}

constexpr ConvolutionKernels kPlain{
    .Convolve = Convolve,
    .ConvolveAlong = ConvolveAlong,
    .ConvolveAcross = ConvolveAcross,
    .ConvolveToPixels = ConvolveToPixels,
};

} // namespace

const ConvolutionKernels& ConvolutionKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
