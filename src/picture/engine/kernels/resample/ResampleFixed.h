// Makes a picture whose pixels are weighted sums of a source's rows and columns, in 16-bit fixed point.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/kernels/resample/ResampleAxis.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace pictorel::engine {

// As ResampleSeparable, within one level of it and several times faster.
PixelArray ResampleFixed(const PixelArray& source, const AxisWeights& columns, const AxisWeights& rows);

// The weights of one axis as multiples of 2^-Bits(); those of each result sample add up to 2^Bits() exactly,
// so that an even surface keeps its colour.
class FixedWeights {
  public:
    // There is a multiple of weights as the use asks for, and columns begin at an even one: where the axis
    // does not, zeros stand before and after. They may reach up to four samples beyond the source.
    struct Taps {
        int first;
        std::span<const std::int16_t> weights;
    };

    enum class Use { Rows, Columns }; // taken in pairs, and in fours

    // As many bits as the largest weight leaves, 14 to `mostBits`.
    FixedWeights(const AxisWeights& axis, Use use, int mostBits);

    int Bits() const noexcept { return bits_; }
    int Length() const noexcept { return static_cast<int>(samples_.size()); }
    Taps operator[](int i) const noexcept {
        const Sample& sample = samples_[static_cast<std::size_t>(i)];
        return {sample.first, {weights_.data() + sample.offset, sample.count}};
    }

  private:
    struct Sample {
        int first;
        std::size_t offset;
        std::size_t count;
    };
    int bits_;
    std::vector<Sample> samples_;
    std::vector<std::int16_t> weights_;
};

inline constexpr int kMostRowBits = 22;    // sums of bytes stay below 2^31
inline constexpr int kMostColumnBits = 16; // and so do those of what the rows were summed to
inline constexpr int kMostWideBits = 15;   // and those of premultiplied components
inline constexpr int kSumFraction = 6;     // bits of a sum of bytes below 1
inline constexpr int kRoundedBits = 15;    // that are left out of products of sums

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

// Some rows are in an order that suits the summing of columns: of each two pixels B B G G R R A A. Here they
// are called paired.
// SumRowsFixed: the rows are `rows.size()` of them, one for each weight; `components` (a multiple of 32, rows
//     are readable that far) sums go to `to`, paired.
// SumColumnsFixed: result rows of columns.Length() pixels, from as many paired ones.
// SumColumnsToSums: the same, not yet rounded to bytes.
// SumSumsFixed: pixels from rows that were made so, past the cache where `streams`. Weights have up to 15
//     bits, and each product is rounded to 2^-kSumFraction, so that all of it stays in 16 bits; `to` begins
//     on a 64-byte boundary.
// Premultiply: `count` components (a multiple of 32).
// SumPremultipliedRows: as SumRowsFixed, of premultiplied rows.
// SumPremultipliedColumns: result rows of that.
namespace scalar {
void SumRowsFixed(std::span<const std::uint8_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, std::int16_t* to);
void SumColumnsFixed(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                     std::ptrdiff_t toStride);
void SumColumnsToSums(const PairedRows& from, const FixedWeights& columns, std::int16_t* to,
                      std::ptrdiff_t toStride);
void SumSumsFixed(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, bool streams, std::uint8_t* to);
void Premultiply(const std::uint8_t* pixels, int count, std::int16_t* to);
void SumPremultipliedRows(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights,
                          int bits, int components, std::int16_t* to);
void SumPremultipliedColumns(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                             std::ptrdiff_t toStride);
} // namespace scalar
namespace simd { // the same to the bit with the best vectors that the processor has
void SumRowsFixed(std::span<const std::uint8_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, std::int16_t* to);
void SumColumnsFixed(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                     std::ptrdiff_t toStride);
void SumColumnsToSums(const PairedRows& from, const FixedWeights& columns, std::int16_t* to,
                      std::ptrdiff_t toStride);
void SumSumsFixed(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, bool streams, std::uint8_t* to);
void Premultiply(const std::uint8_t* pixels, int count, std::int16_t* to);
void SumPremultipliedRows(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights,
                          int bits, int components, std::int16_t* to);
void SumPremultipliedColumns(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                             std::ptrdiff_t toStride);
} // namespace simd

} // namespace pictorel::engine
