// The loops of embossing: luma of rows, moved by a fraction of a pixel, and the relief made of two.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Luma in 1/64 of a level.
using EmbossLuma = std::int16_t;
inline constexpr int kEmbossLumaBits = 6;
inline constexpr int kEmbossLumaUnit = 1 << kEmbossLumaBits;

// What components weigh in it: kEmbossLumaUnit times the weights of luma, rounded.
inline constexpr int kEmbossWeightBits = 8;
inline constexpr int kEmbossLumaBlue = 1183;
inline constexpr int kEmbossLumaGreen = 11718;
inline constexpr int kEmbossLumaRed = 3483;
static_assert(kEmbossLumaBlue + kEmbossLumaGreen + kEmbossLumaRed == kEmbossLumaUnit << kEmbossWeightBits);

// Weights of four neighbours in 1/kFixedUnit.
using FourWeights = std::array<std::int16_t, 4>;
using FourRows = std::array<const EmbossLuma*, 4>;

// What a relief row is made of: grey = 128 + gain (light - shade), alpha that of the pixels at `in`. Light
// and shade are sums of four rows each.
struct ReliefRow {
    FourRows light;
    FourRows shade;
    FourWeights lightWeights;
    FourWeights shadeWeights;
    float gain;
    const std::uint8_t* in;
    std::uint8_t* out; // begins on a 64-byte boundary
    int width;
    bool streams;                        // past the cache
    const std::uint8_t* ahead = nullptr; // pixels that are read soon, fetched meanwhile; or null
};

// Rows, of pixels too, have room for a multiple of 16.
struct EmbossKernels {
    // The luma of `width` pixels, rounded to the unit.
    void (*EmbossLumaRow)(const std::uint8_t* in, int width, EmbossLuma* luma);

    // `count` weighted sums of four rows; each product with one of four weights is rounded.
    void (*SumFour)(const FourRows& rows, const FourWeights& weights, int count, EmbossLuma* sums);

    // Rounded to nearest and clamped.
    void (*MakeRelief)(const ReliefRow& row);

    static const EmbossKernels& Plain();
    static const EmbossKernels& Best();
};

} // namespace pictorel::engine
