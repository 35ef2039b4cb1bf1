// The summing of rows and columns in fixed point as plain loops, see ResampleKernels.h.
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/resample/ResampleKernels.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

// Where component c of a row stands in a paired one.
constexpr int PlaceOf(int c) {
    const int pair = c / (2 * kComponents);
    const int inPair = c % (2 * kComponents);
    return pair * 2 * kComponents + inPair % kComponents * 2 + inPair / kComponents;
}

template <class Component>
std::int32_t SumOfRows(std::span<const Component* const> rows, std::span<const std::int16_t> weights, int c,
                       int shift) {
    std::int32_t sum = 1 << (shift - 1);
    for (std::size_t i = 0; i < weights.size(); ++i) {
        sum += weights[i] * rows[i][c];
    }
    return sum >> shift;
}

std::int32_t SumOfColumns(const std::int16_t* paired, const FixedWeights::Taps& taps, int c) {
    std::int32_t sum = 0;
    for (int i = 0; i < static_cast<int>(taps.weights.size()); ++i) {
        sum +=
            taps.weights[static_cast<std::size_t>(i)] * paired[PlaceOf((taps.first + i) * kComponents + c)];
    }
    return sum;
}

std::int32_t Shifted(std::int32_t sum, int shift) {
    return (sum + (1 << (shift - 1))) >> shift;
}

void SumColumnsOfRow(const std::int16_t* from, const FixedWeights& columns, std::uint8_t* to) {
    for (int x = 0; x < columns.Length(); ++x, to += kComponents) {
        for (int c = 0; c < kComponents; ++c) {
            to[c] = ClampToByte(Shifted(SumOfColumns(from, columns[x], c), columns.Bits() + kSumFraction));
        }
    }
}

void SumColumnsOfRowToSums(const std::int16_t* from, const FixedWeights& columns, std::int16_t* to) {
    for (int x = 0; x < columns.Length(); ++x, to += kComponents) {
        for (int c = 0; c < kComponents; ++c) {
            to[c] = static_cast<std::int16_t>(Shifted(SumOfColumns(from, columns[x], c), columns.Bits()));
        }
    }
}

void SumPremultipliedColumnsOfRow(const std::int16_t* from, const FixedWeights& columns, std::uint8_t* to) {
    const float perUnit = std::ldexp(2.0F, -columns.Bits());
    for (int x = 0; x < columns.Length(); ++x, to += kComponents) {
        float sums[kComponents];
        for (int c = 0; c < kComponents; ++c) {
            const auto sum = static_cast<float>(SumOfColumns(from, columns[x], c));
            sums[c] = sum * perUnit + kPremultipliedOffset;
        }
        const bool isVisible = sums[3] >= 127.5F; // below, alpha rounds to nothing and there is no colour
        for (int c = 0; c < 3; ++c) {
            to[c] = isVisible ? RoundToByte(sums[c] * (255.0F / sums[3])) : 0;
        }
        to[3] = RoundToByte(sums[3] * (1.0F / 255));
    }
}

void SumRowsFixed(std::span<const std::uint8_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, std::int16_t* to) {
    for (int c = 0; c < components; ++c) {
        to[PlaceOf(c)] = static_cast<std::int16_t>(SumOfRows(rows, weights, c, bits - kSumFraction));
    }
}

void SumSumsFixed(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, bool /*streams*/, std::uint8_t* to) {
    const int fraction = bits + kSumFraction - kFixedBits;
    for (int c = 0; c < components; ++c) {
        int sum = 1 << (fraction - 1);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            sum += FixedProduct(rows[i][c], weights[i]);
        }
        to[c] = ClampToByte(sum >> fraction);
    }
}

void Premultiply(const std::uint8_t* pixels, int count, std::int16_t* to) {
    for (int i = 0; i < count; ++i) {
        const int factor = i % kComponents == 3 ? 255 : pixels[i | 3];
        to[i] = static_cast<std::int16_t>(pixels[i] * factor - kPremultipliedOffset);
    }
}

void SumPremultipliedRows(std::span<const std::int16_t* const> rows, std::span<const std::int16_t> weights,
                          int bits, int components, std::int16_t* to) {
    for (int c = 0; c < components; ++c) {
        to[PlaceOf(c)] = static_cast<std::int16_t>(SumOfRows(rows, weights, c, bits + 1));
    }
}

void SumColumnsFixed(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                     std::ptrdiff_t toStride) {
    for (int row = 0; row < from.count; ++row) {
        SumColumnsOfRow(from[row], columns, to + row * toStride);
    }
}

void SumColumnsToSums(const PairedRows& from, const FixedWeights& columns, std::int16_t* to,
                      std::ptrdiff_t toStride) {
    for (int row = 0; row < from.count; ++row) {
        SumColumnsOfRowToSums(from[row], columns, to + row * toStride);
    }
}

void SumPremultipliedColumns(const PairedRows& from, const FixedWeights& columns, std::uint8_t* to,
                             std::ptrdiff_t toStride) {
    for (int row = 0; row < from.count; ++row) {
        SumPremultipliedColumnsOfRow(from[row], columns, to + row * toStride);
    }
}

constexpr ResampleKernels kPlain{
    .SumRowsFixed = SumRowsFixed,
    .SumColumnsFixed = SumColumnsFixed,
    .SumColumnsToSums = SumColumnsToSums,
    .SumSumsFixed = SumSumsFixed,
    .Premultiply = Premultiply,
    .SumPremultipliedRows = SumPremultipliedRows,
    .SumPremultipliedColumns = SumPremultipliedColumns,
};

} // namespace

const ResampleKernels& ResampleKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
