// Bicubic interpolation of runs of points by plain scalar code, see WarpSampler.h.
#include "imaging/engine/Rounding.h"
#include "imaging/engine/WarpKernel.h"

#include <cstddef>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;

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
    constexpr int kPhaseMask = kPhases - 1;
    return {pixels + top * stride + left * kComponents, kCubicTable[static_cast<std::size_t>(x & kPhaseMask)],
            kCubicTable[static_cast<std::size_t>(y & kPhaseMask)]};
}

void InterpolateOpaque(const Neighbourhood& n, std::ptrdiff_t stride, std::uint8_t* to) {
    for (int c = 0; c < kComponents; ++c) {
        std::int32_t sum = 1 << (kProductBits - 1);
        for (int row = 0; row < kCubicTaps; ++row) {
            const std::uint8_t* const p = n.topLeft + row * stride + c;
            for (int column = 0; column < kCubicTaps; ++column) {
                const std::int32_t product = n.across[column] * n.down[row];
                sum += ((product + (1 << (kProductShift - 1))) >> kProductShift) * p[column * kComponents];
            }
        }
        to[c] = ClampToByte(sum >> kProductBits);
    }
}

bool IsOpaque(const Neighbourhood& n, std::ptrdiff_t stride) {
    std::uint8_t all = 255;
    for (int row = 0; row < kCubicTaps; ++row) {
        const std::uint8_t* const alpha = n.topLeft + row * stride + 3;
        all &= alpha[0] & alpha[4] & alpha[8] & alpha[12];
    }
    return all == 255;
}

void InterpolateWithAlpha(const Neighbourhood& n, std::ptrdiff_t stride, std::uint8_t* to) {
    std::array<float, kComponents> sums{}; // colours times alpha, and alpha
    for (int row = 0; row < kCubicTaps; ++row) {
        for (int column = 0; column < kCubicTaps; ++column) {
            const std::uint8_t* const p = n.topLeft + row * stride + column * kComponents;
            const float share = static_cast<float>(n.across[column] * n.down[row]) * static_cast<float>(p[3]);
            for (int c = 0; c < 3; ++c) {
                sums[c] += share * static_cast<float>(p[c]);
            }
            sums[3] += share;
        }
    }
    constexpr float kOne = 1 << (2 * kWeightBits);
    // Half an alpha level and less is nothing: there is no colour to speak of.
    const bool isVisible = sums[3] >= kOne / 2;
    for (int c = 0; c < 3; ++c) {
        const float colour = isVisible ? sums[c] / sums[3] : 0;
        to[c] = RoundToByte(colour);
    }
    to[3] = RoundToByte(sums[3] / kOne);
}

} // namespace

void SampleOpaqueReference(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                           std::uint8_t* to) {
    for (int i = 0; i < run.count; ++i, to += kComponents) {
        InterpolateOpaque(NeighbourhoodOf(pixels, stride, run.x[i], run.y[i]), stride, to);
    }
}

void SampleWithAlphaReference(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                              std::uint8_t* to) {
    for (int i = 0; i < run.count; ++i, to += kComponents) {
        const Neighbourhood n = NeighbourhoodOf(pixels, stride, run.x[i], run.y[i]);
        if (IsOpaque(n, stride)) {
            InterpolateOpaque(n, stride, to);
        } else {
            InterpolateWithAlpha(n, stride, to);
        }
    }
}

} // namespace pictorel::engine
