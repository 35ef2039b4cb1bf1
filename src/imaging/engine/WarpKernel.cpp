// Bicubic interpolation of runs of points by plain scalar code, see WarpSampler.h.
#include "imaging/engine/WarpKernel.h"

#include <algorithm>
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

std::uint8_t ToByte(std::int32_t value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

} // namespace

void SampleOpaqueReference(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                           std::uint8_t* to) {
    for (int i = 0; i < run.count; ++i, to += kComponents) {
        const auto [topLeft, across, down] = NeighbourhoodOf(pixels, stride, run.x[i], run.y[i]);
        for (int c = 0; c < kComponents; ++c) {
            std::int32_t sum = 1 << (kColumnShift - 1);
            for (int row = 0; row < kCubicTaps; ++row) {
                const std::uint8_t* const p = topLeft + row * stride + c;
                const std::int32_t rowSum = across[0] * p[0] + across[1] * p[4] + across[2] * p[8] +
                                            across[3] * p[12] + (1 << (kRowShift - 1));
                sum += down[row] * (rowSum >> kRowShift);
            }
            to[c] = ToByte(sum >> kColumnShift);
        }
    }
}

void SampleWithAlphaReference(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                              std::uint8_t* to) {
    for (int i = 0; i < run.count; ++i, to += kComponents) {
        const auto [topLeft, across, down] = NeighbourhoodOf(pixels, stride, run.x[i], run.y[i]);
        std::array<float, kComponents> sums{}; // colours times alpha, and alpha
        for (int row = 0; row < kCubicTaps; ++row) {
            for (int column = 0; column < kCubicTaps; ++column) {
                const std::uint8_t* const p = topLeft + row * stride + column * kComponents;
                const float share = static_cast<float>(across[column] * down[row]) * static_cast<float>(p[3]);
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
            to[c] = static_cast<std::uint8_t>(std::clamp(colour, 0.0F, 255.0F) + 0.5F);
        }
        to[3] = static_cast<std::uint8_t>(std::clamp(sums[3] / kOne, 0.0F, 255.0F) + 0.5F);
    }
}

void SampleOpaque(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to) {
    SampleOpaqueReference(pixels, stride, run, to);
}

void SampleWithAlpha(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                     std::uint8_t* to) {
    SampleWithAlphaReference(pixels, stride, run, to);
}

} // namespace pictorel::engine
