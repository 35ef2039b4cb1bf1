// Bicubic interpolation of runs of points by plain scalar code, see BicubicKernels.h.
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/warp/BicubicKernels.h"

#include <cstddef>

namespace pictorel::engine {
namespace {

// The 4 x 4 neighbours of a point and their weights.
struct Neighbourhood {
    const std::uint8_t* topLeft;
    const CubicWeights& across;
    const CubicWeights& down;
};

Neighbourhood NeighbourhoodOf(const std::uint8_t* pixels, std::ptrdiff_t stride, std::int32_t x,
                              std::int32_t y) {
    const std::ptrdiff_t left = (x >> kPhaseBits) - 1;
    const std::ptrdiff_t top = (y >> kPhaseBits) - 1;
    return {pixels + top * stride + left * kComponents, WeightsAt(x), WeightsAt(y)};
}

// The products of the weights, rounded.
std::int32_t WeightOf(const Neighbourhood& n, int row, int column) {
    return (n.across[column] * n.down[row] + (1 << (kProductShift - 1))) >> kProductShift;
}

void InterpolateOpaque(const Neighbourhood& n, std::ptrdiff_t stride, std::uint8_t* to) {
    for (int c = 0; c < kComponents; ++c) {
        std::int32_t sum = 1 << (kProductBits - 1);
        for (int row = 0; row < kCubicTaps; ++row) {
            const std::uint8_t* const p = n.topLeft + row * stride + c;
            for (int column = 0; column < kCubicTaps; ++column) {
                sum += WeightOf(n, row, column) * p[column * kComponents];
            }
        }
        to[c] = ClampToByte(sum >> kProductBits);
    }
}

void InterpolateWithAlpha(const Neighbourhood& n, std::ptrdiff_t stride, std::uint8_t* to) {
    std::array<std::int32_t, kComponents> sums{}; // colours times alpha, and 255 times alpha
    for (int row = 0; row < kCubicTaps; ++row) {
        for (int column = 0; column < kCubicTaps; ++column) {
            const std::uint8_t* const p = n.topLeft + row * stride + column * kComponents;
            const std::int32_t share = WeightOf(n, row, column) * p[3];
            for (int c = 0; c < 3; ++c) {
                sums[c] += share * p[c];
            }
            sums[3] += share * 255;
        }
    }
    const auto alpha = static_cast<float>(sums[3]);
    const float perAlpha = alpha >= kLeastVisible ? 255.0F / alpha : 0.0F;
    for (int c = 0; c < 3; ++c) {
        to[c] = RoundToByte(static_cast<float>(sums[c]) * perAlpha);
    }
    to[3] = RoundToByte(alpha * kPerAlphaLevel);
}

void SampleOpaque(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to) {
    for (int i = 0; i < run.count; ++i, to += kComponents) {
        InterpolateOpaque(NeighbourhoodOf(pixels, stride, run.x[i], run.y[i]), stride, to);
    }
}

void SampleWithAlpha(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to) {
    for (int i = 0; i < run.count; ++i, to += kComponents) {
        InterpolateWithAlpha(NeighbourhoodOf(pixels, stride, run.x[i], run.y[i]), stride, to);
    }
}

constexpr BicubicKernels kPlain{
    .SampleOpaque = SampleOpaque,
    .SampleWithAlpha = SampleWithAlpha,
};

} // namespace

const BicubicKernels& BicubicKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
