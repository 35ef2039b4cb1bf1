// The loops of embossing: luma of rows, moved by a fraction of a pixel, and the relief made of two.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Luma in 1/64 of a level.
using WideLuma = std::int16_t;
inline constexpr int kWideLumaUnit = 64;

// What components weigh in it, in 1/256: 256 kWideLumaUnit times the weights of luma, rounded.
inline constexpr int kWideLumaBlue = 1183;
inline constexpr int kWideLumaGreen = 11718;
inline constexpr int kWideLumaRed = 3483;
static_assert(kWideLumaBlue + kWideLumaGreen + kWideLumaRed == 256 * kWideLumaUnit);

// Weights of four neighbours in 1/32768.
using FourWeights = std::array<std::int16_t, 4>;
using FourRows = std::array<const WideLuma*, 4>;

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

// `luma` has room for a multiple of 16, like the rows of all the others; so have pixel rows. Each product
// with one of four weights is rounded.
namespace scalar {

void WideLumaRow(const std::uint8_t* in, int width, WideLuma* luma);
void SumFour(const FourRows& rows, const FourWeights& weights, int count, WideLuma* sums);
void MakeRelief(const ReliefRow& row);

} // namespace scalar

namespace simd {

void WideLumaRow(const std::uint8_t* in, int width, WideLuma* luma);
void SumFour(const FourRows& rows, const FourWeights& weights, int count, WideLuma* sums);
void MakeRelief(const ReliefRow& row);

} // namespace simd

} // namespace pictorel::engine
