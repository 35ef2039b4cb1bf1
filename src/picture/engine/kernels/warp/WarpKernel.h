// The cubic convolution weights and the fixed-point steps that every bicubic kernel shares.
#pragma once

#include "picture/engine/kernels/warp/WarpSampler.h"

#include <array>
#include <cstdint>

namespace pictorel::engine {

inline constexpr int kCubicTaps = 4;

// Weights along one axis are in 1/2^14. Those of the 4 x 4 neighbours are their products, rounded to 1/2^13
// so that they still fit a signed 16-bit number: the sum over all is off by a quarter of a level at most.
inline constexpr int kWeightBits = 14;
inline constexpr int kProductBits = 13;
inline constexpr int kProductShift = 2 * kWeightBits - kProductBits;

// With alpha, the sums are of colour times alpha and of 255 times alpha. Below half a level of alpha there is
// nothing to be seen and no colour to speak of.
inline constexpr float kPerAlphaLevel = 1.0F / (255 << kProductBits);
inline constexpr float kLeastVisible = 255 << (kProductBits - 1);

using CubicWeights = std::array<std::int16_t, kCubicTaps>;

// The product of a weight and one whole, as the weights of neighbours are rounded.
constexpr std::int32_t HalvedWeight(std::int16_t weight) {
    static_assert(kProductShift - kWeightBits == 1);
    return (weight + 1) >> 1;
}

// Weights of the pixels at -1, 0, 1 and 2 for a point at `phase`/kPhases between 0 and 1; they add up to
// 2^14 exactly, so that even areas stay what they are.
constexpr CubicWeights CubicWeightsAt(int phase) {
    const double t = static_cast<double>(phase) / kPhases;
    const auto fixed = [](double weight) {
        const double scaled = weight * (1 << kWeightBits);
        return static_cast<int>(scaled < 0 ? scaled - 0.5 : scaled + 0.5);
    };
    // Keys 1981, equation 15, at the distances 1 + t, t, 1 - t and 2 - t.
    std::array<int, kCubicTaps> weights{
        fixed(((-0.5 * t + 1) * t - 0.5) * t), fixed((1.5 * t - 2.5) * t * t + 1),
        fixed(((-1.5 * t + 2) * t + 0.5) * t), fixed((0.5 * t - 0.5) * t * t)};
    const int excess = weights[0] + weights[1] + weights[2] + weights[3] - (1 << kWeightBits);
    weights[phase < kPhases / 2 ? 1 : 2] -= excess;
    return {static_cast<std::int16_t>(weights[0]), static_cast<std::int16_t>(weights[1]),
            static_cast<std::int16_t>(weights[2]), static_cast<std::int16_t>(weights[3])};
}

constexpr std::array<CubicWeights, kPhases> MakeCubicTable() {
    std::array<CubicWeights, kPhases> table{};
    for (int phase = 0; phase < kPhases; ++phase) {
        table[static_cast<std::size_t>(phase)] = CubicWeightsAt(phase);
    }
    return table;
}

alignas(64) inline constexpr std::array<CubicWeights, kPhases> kCubicTable = MakeCubicTable();
static_assert(kCubicTable[0] == CubicWeights{0, 1 << kWeightBits, 0, 0});
static_assert(kCubicTable[kPhases / 2] == CubicWeights{-1024, 9216, 9216, -1024});

// Along one axis, for a point at that position in 1/kPhases.
inline const CubicWeights& WeightsAt(std::int32_t position) {
    return kCubicTable[static_cast<std::size_t>(position & (kPhases - 1))];
}

} // namespace pictorel::engine
