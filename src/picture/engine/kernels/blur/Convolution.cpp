// Convolution with a symmetric kernel, see Convolution.h.
#include "picture/engine/kernels/blur/Convolution.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace pictorel::engine {
namespace {

// A Gaussian sampled at whole pixels falls short of its own variance below this width (at 0.2 px it would do
// nothing at all); three weights of the right variance take its place. At this width the two agree.
constexpr double kNarrow = 0.6;

// What is cut off a bell on both sides together, for each of the two directions: an eighth of a level.
constexpr double kCut = 0.0005;

// Weights of both neighbours at distance 1, 2, ... together; the centre has the rest.
std::vector<double> Neighbours(double sigma) {
    if (sigma <= kNarrow) {
        return {sigma * sigma};
    }
    constexpr double kFarthest = 6; // standard deviations
    std::vector<double> bell(static_cast<std::size_t>(std::ceil(kFarthest * sigma)));
    for (std::size_t k = 0; k < bell.size(); ++k) {
        const double distance = static_cast<double>(k + 1) / sigma;
        bell[k] = 2 * std::exp(-distance * distance / 2);
    }
    const double whole = 1 + std::accumulate(bell.begin(), bell.end(), 0.0);
    double total = whole;
    while (whole - total + bell.back() < kCut * whole) {
        total -= bell.back();
        bell.pop_back();
    }
    for (double& weight : bell) {
        weight /= total;
    }
    return bell;
}

} // namespace

HalfKernel GaussianKernel(double sigma) {
    const std::vector<double> neighbours = Neighbours(sigma);
    HalfKernel kernel(neighbours.size() + 1);
    // From the outside in, each rounding makes up for the ones before it.
    double exact = 0;
    int placed = 0;
    for (std::size_t k = neighbours.size(); k > 0; --k) {
        exact += neighbours[k - 1] * kKernelUnit;
        const int weight = static_cast<int>(std::lround(exact)) - placed;
        kernel[k] = static_cast<std::int16_t>(weight);
        placed += weight;
    }
    if (placed == 0) {
        return {};
    }
    kernel[0] = static_cast<std::int16_t>(kKernelUnit - placed);
    while (kernel.back() == 0) {
        kernel.pop_back();
    }
    return kernel;
}

namespace scalar {
namespace {

constexpr std::size_t kComponents = PixelArray::kComponents;

int Average(int a, int b) {
    return (a + b + 1) / 2;
}

constexpr int kOpaqueUnit = 256;

// The sum of the weighted taps, at(k) for k from 0, the centre in the middle; `rounding` is added to each
// product in 1/32768.
template <class Tap>
int WeightedSum(const HalfKernel& kernel, int rounding, const Tap& at) {
    const auto weighted = [&](int value, std::size_t k) {
        return (value * kernel[k] + rounding) / kKernelUnit;
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
    const int added = (difference * share + 16384) >> 15; // in 1/32 of a level
    return static_cast<std::uint8_t>(
        std::clamp(std::clamp(original * 32 + 16 + added, -32768, 32767) >> 5, 0, 255));
}

} // namespace

void Convolve(const Fine* const* taps, const HalfKernel& kernel, Fine* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = static_cast<Fine>(
            WeightedSum(kernel, kKernelUnit / 2, [&](std::size_t k) { return taps[k][i]; }));
    }
}

void ConvolveAlong(const Fine* in, const HalfKernel& kernel, Fine* out, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const auto tap = [&](std::size_t k) { return in[i + k * kFinesPerPixel]; };
        out[i] = static_cast<Fine>(WeightedSum(kernel, kKernelUnit / 2, tap));
    }
}

void ConvolveAcross(const std::uint8_t* in, const HalfKernel& kernel, int width, Fine* out) {
    Fine* const upper = out + HalfLength(width);
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); ++i) {
        const auto tap = [&](std::size_t k) { return in + 2 * i + k * kComponents; };
        const int lower = WeightedSum(kernel, 0, [&](std::size_t k) { return tap(k)[0] * kOpaqueUnit; });
        // Two components as one number, which saves parting them.
        const int both =
            WeightedSum(kernel, 0, [&](std::size_t k) { return tap(k)[1] * kOpaqueUnit + tap(k)[0]; });
        out[i] = static_cast<Fine>(lower + NeighbourCount(kernel));
        upper[i] = static_cast<Fine>(both + NeighbourCount(kernel) - lower / kOpaqueUnit);
    }
}

void ConvolveToPixels(const Fine* const* taps, const HalfKernel& kernel, const PixelTarget& target) {
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

} // namespace scalar

} // namespace pictorel::engine
