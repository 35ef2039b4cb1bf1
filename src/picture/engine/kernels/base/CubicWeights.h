// The cubic convolution weights that everything shares that looks between pixels.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Places between pixels are told apart in 1/1024 of a pixel.
inline constexpr int kPhaseBits = 10;
inline constexpr int kPhases = 1 << kPhaseBits;

inline constexpr int kCubicTaps = 4;

// In 1/2^14.
inline constexpr int kWeightBits = 14;
using CubicWeights = std::array<std::int16_t, kCubicTaps>;

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
