// Resampling in 16-bit fixed point, see ResampleOpaque.h. Rows are summed before columns: when reducing, that
// is where the work is, and it needs no shuffling. Narrow strips keep the source lines in the cache while
// several result rows are made of them.
#include "imaging/engine/ResampleOpaque.h"

#include "imaging/ForEachBand.h"
#include "imaging/engine/Rounding.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;
constexpr int kFewestBits = 14;   // for weights up to 2
constexpr std::size_t kGroup = 4; // weights that the passes take at once
constexpr int kRowsTogether = 8;
constexpr int kStripComponents = 1024;
constexpr int kRowBlock = 32; // components

float LargestWeight(const AxisWeights& axis) {
    float largest = 0;
    for (int i = 0; i < axis.Length(); ++i) {
        for (const float weight : axis[i].weights) {
            largest = std::max(largest, std::abs(weight));
        }
    }
    return largest;
}

// Where component c of a row stands among the sums of rows.
constexpr int PlaceOf(int c) {
    const int pair = c / (2 * kComponents);
    const int inPair = c % (2 * kComponents);
    return pair * 2 * kComponents + inPair % kComponents * 2 + inPair / kComponents;
}

int RoundedUp(int value, int unit) {
    return (value + unit - 1) / unit * unit;
}

class Band {
  public:
    Band(const PixelArray& source, const FixedWeights& rows)
        : source_(source),
          rows_(rows),
          components_(RoundedUp(source.Width() * kComponents, kRowBlock)),
          stride_(components_ + kRowBlock),
          sums_(static_cast<std::size_t>(stride_) * kRowsTogether) {}

    void SumRows(int first, int end) {
        for (int left = 0; left < components_; left += kStripComponents) {
            const int count = std::min(kStripComponents, components_ - left);
            for (int row = first; row < end; ++row) {
                const FixedWeights::Taps taps = rows_[row];
                lines_.clear();
                for (int i = 0; i < static_cast<int>(taps.weights.size()); ++i) {
                    lines_.push_back(source_.Row(std::min(taps.first + i, source_.Height() - 1)) + left);
                }
                simd::SumRowsFixed(lines_, taps.weights, rows_.Bits(), count,
                                   sums_.data() + (row - first) * stride_ + left);
            }
        }
    }

    const std::int16_t* Sums(int i) const { return sums_.data() + i * stride_; }

  private:
    const PixelArray& source_;
    const FixedWeights& rows_;
    int components_;
    std::ptrdiff_t stride_;
    std::vector<std::int16_t> sums_;
    std::vector<const std::uint8_t*> lines_;
};

} // namespace

FixedWeights::FixedWeights(const AxisWeights& axis, int mostBits) : bits_(kFewestBits) {
    const float largest = LargestWeight(axis);
    while (bits_ < mostBits && std::ldexp(largest, bits_ + 1) <= INT16_MAX) {
        ++bits_;
    }
    for (int i = 0; i < axis.Length(); ++i) {
        const AxisWeights::Taps taps = axis[i];
        const std::size_t before = static_cast<std::size_t>(taps.first % 2);
        const std::size_t count = (before + taps.weights.size() + kGroup - 1) / kGroup * kGroup;
        samples_.push_back({taps.first - taps.first % 2, weights_.size(), count});
        weights_.resize(weights_.size() + count);
        std::int16_t* const weights = weights_.data() + weights_.size() - count + before;
        int rest = 1 << bits_;
        std::size_t heaviest = 0;
        for (std::size_t k = 0; k < taps.weights.size(); ++k) {
            weights[k] = static_cast<std::int16_t>(std::lround(std::ldexp(taps.weights[k], bits_)));
            rest -= weights[k];
            heaviest = weights[k] > weights[heaviest] ? k : heaviest;
        }
        weights[heaviest] = static_cast<std::int16_t>(weights[heaviest] + rest);
    }
}

PixelArray ResampleOpaque(const PixelArray& source, const AxisWeights& columns, const AxisWeights& rows) {
    PixelArray result = PixelArray::Like(source, columns.Length(), rows.Length());
    std::uint8_t* const pixels = result.WritableRows();
    const FixedWeights fixedColumns(columns, kMostColumnBits);
    const FixedWeights fixedRows(rows, kMostRowBits);
    const std::size_t sourceBytesPerRow = source.RowBytes() * static_cast<std::size_t>(source.Height()) /
                                          static_cast<std::size_t>(rows.Length());
    ForEachBand(rows.Length(), result.RowBytes() + sourceBytesPerRow, [&](int first, int end) {
        Band band(source, fixedRows);
        for (int top = first; top < end; top += kRowsTogether) {
            const int bottom = std::min(top + kRowsTogether, end);
            band.SumRows(top, bottom);
            for (int row = top; row < bottom; ++row) {
                simd::SumColumnsFixed(band.Sums(row - top), fixedColumns, pixels + row * result.Stride());
            }
        }
    });
    return result;
}

namespace scalar {

void SumRowsFixed(std::span<const std::uint8_t* const> rows, std::span<const std::int16_t> weights, int bits,
                  int components, std::int16_t* to) {
    const int shift = bits - kSumFraction;
    for (int c = 0; c < components; ++c) {
        std::int32_t sum = 1 << (shift - 1);
        for (std::size_t i = 0; i < weights.size(); ++i) {
            sum += weights[i] * rows[i][c];
        }
        to[PlaceOf(c)] = static_cast<std::int16_t>(sum >> shift);
    }
}

void SumColumnsFixed(const std::int16_t* from, const FixedWeights& columns, std::uint8_t* to) {
    const int shift = columns.Bits() + kSumFraction;
    for (int x = 0; x < columns.Length(); ++x, to += kComponents) {
        const FixedWeights::Taps taps = columns[x];
        for (int c = 0; c < kComponents; ++c) {
            std::int32_t sum = 1 << (shift - 1);
            for (int i = 0; i < static_cast<int>(taps.weights.size()); ++i) {
                sum += taps.weights[static_cast<std::size_t>(i)] *
                       from[PlaceOf((taps.first + i) * kComponents + c)];
            }
            to[c] = ClampToByte(sum >> shift);
        }
    }
}

} // namespace scalar
} // namespace pictorel::engine
