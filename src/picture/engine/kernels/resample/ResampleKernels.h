// Rows and columns summed with weights in 16-bit fixed point.
#pragma once

#include "picture/engine/kernels/resample/FixedWeights.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace pictorel::engine {

inline constexpr int kMostRowBits = 22;           // sums of bytes stay below 2^31
inline constexpr int kMostColumnBits = 16;        // and so do those of what the rows were summed to
inline constexpr int kMostPremultipliedBits = 15; // and those of premultiplied components
inline constexpr int kSumFraction = 6;            // bits of a sum of bytes below 1

// Premultiplied components are colour times alpha and alpha times 255, less this. Their sums over rows are
// kept in halves, less half of this, which leaves room for what overshoots.
inline constexpr int kPremultipliedOffset = 32768;

// Rows of 16-bit numbers, `stride` of them apart.
struct PairedRows {
    const std::int16_t* first;
    std::ptrdiff_t stride;
    int count;

    const std::int16_t* operator[](int i) const { return first + i * stride; }
};

// Rows that are called paired are in an order that suits the summing of columns: of each two pixels B B G G R
// R A A. Rows come with one weight each, `bits` as FixedWeights has them; `components` are multiples of 32
// and rows readable that far. Sums are rounded to nearest, and clamped where they become bytes.
struct ResampleKernels {
    // Sums of rows of bytes, with kSumFraction bits below 1, paired.
    void (*SumRowsFixed)(std::span<const std::uint8_t* const> rows, std::span<const std::int16_t> weights,
                         int bits, int components, std::int16_t* to);

    // Result rows of columns.Length() pixels, `toStride` bytes apart, from as many paired ones.
    void (*SumColumnsFixed)(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                            std::ptrdiff_t toStride);

    // The same, not yet rounded to bytes.
    void (*SumColumnsToSums)(const PairedRows& from, const FixedWeights& columns, std::int16_t* to,
                             std::ptrdiff_t toStride);

    // Any number of components of pixels from rows that were made so, past the cache where it `streams`.
    // Weights have up to 15 bits, and each product is rounded to 2^-kSumFraction, so that all of it stays in
    // 16 bits; `to` begins on a 64-byte boundary.
    void (*SumSumsFixed)(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights,
                         int bits, int components, bool streams, std::uint8_t* to);

    // `count` premultiplied components, a multiple of 32, see kPremultipliedOffset.
    void (*Premultiply)(const std::uint8_t* pixels, int count, std::int16_t* to);

    // As SumRowsFixed, of premultiplied rows.
    void (*SumPremultipliedRows)(std::span<const std::int16_t* const> rows,
                                 std::span<const std::int16_t> weights, int bits, int components,
                                 std::int16_t* to);

    // Result rows of that.
    void (*SumPremultipliedColumns)(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                                    std::ptrdiff_t toStride);

    static const ResampleKernels& Plain();
    static const ResampleKernels& Best();
};

} // namespace pictorel::engine
