// Resampling in 16-bit fixed point, see ResampleFixed.h. When reducing, rows are summed before columns: that
// is where the work is then, and it needs no shuffling; narrow strips keep the source lines in the cache
// while several result rows are made of them. When enlarging, columns come first, while there are few rows.
#include "picture/engine/kernels/resample/ResampleFixed.h"

#include "picture/ForEachBand.h"
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/resample/ResampleKernels.h"

#include <algorithm>
#include <array>

namespace pictorel::engine {
namespace {

constexpr int kStripComponents = 32768;
constexpr int kRowBlock = 32; // components

int RoundedUp(int value, int unit) {
    return (value + unit - 1) / unit * unit;
}

// Result rows of an opaque picture, rows first.
class OpaqueBand {
  public:
    OpaqueBand(const PixelArray& source, const FixedWeights& rows, const FixedWeights& columns)
        : source_(source),
          rows_(rows),
          columns_(columns),
          components_(RoundedUp(source.Width() * kComponents, kRowBlock)),
          stride_(components_ + kRowBlock),
          sums_(static_cast<std::size_t>(stride_) * kRowsTogether) {}

    void MakeRows(int first, int end, std::uint8_t* to, std::ptrdiff_t toStride) {
        for (int left = 0; left < components_; left += kStripComponents) {
            SumStrip(left, first, end);
        }
        ResampleKernels::Best().SumColumnsFixed({sums_.data(), stride_, end - first}, columns_, to, toStride);
    }

  private:
    void SumStrip(int left, int first, int end) {
        const int count = std::min(kStripComponents, components_ - left);
        for (int row = first; row < end; ++row) {
            const FixedWeights::Taps taps = rows_[row];
            lines_.clear();
            for (int i = 0; i < static_cast<int>(taps.weights.size()); ++i) {
                lines_.push_back(source_.Row(std::min(taps.first + i, source_.Height() - 1)) + left);
            }
            ResampleKernels::Best().SumRowsFixed(lines_, taps.weights, rows_.Bits(), count,
                                                 sums_.data() + (row - first) * stride_ + left);
        }
    }

    const PixelArray& source_;
    const FixedWeights& rows_;
    const FixedWeights& columns_;
    int components_;
    std::ptrdiff_t stride_;
    std::vector<std::int16_t> sums_;
    std::vector<const std::uint8_t*> lines_;
};

// Result rows of a picture with alpha, rows first.
class AlphaBand {
  public:
    AlphaBand(const PixelArray& source, const FixedWeights& rows, const FixedWeights& columns)
        : source_(source),
          rows_(rows),
          columns_(columns),
          components_(RoundedUp(source.Width() * kComponents, kRowBlock)),
          stride_(components_ + kRowBlock),
          sums_(static_cast<std::size_t>(stride_) * kRowsTogether) {}

    void MakeRows(int first, int end, std::uint8_t* to, std::ptrdiff_t toStride) {
        top_ = source_.Height(); // not always the first row's: it may leave out weights of 0
        bottom_ = 0;
        for (int row = first; row < end; ++row) {
            const FixedWeights::Taps taps = rows_[row];
            top_ = std::min(top_, taps.first);
            bottom_ = std::max(bottom_, taps.first + static_cast<int>(taps.weights.size()));
        }
        bottom_ = std::min(bottom_, source_.Height());
        const int held = std::max(bottom_ - top_, 1);
        constexpr int kCacheComponents = 1 << 16;
        stripComponents_ =
            std::clamp(kCacheComponents / held / kRowBlock, 1, kStripComponents / kRowBlock) * kRowBlock;
        strip_.resize(std::max(strip_.size(),
                               static_cast<std::size_t>(held) * static_cast<std::size_t>(stripComponents_)));
        for (int left = 0; left < components_; left += stripComponents_) {
            SumStrip(left, first, end);
        }
        ResampleKernels::Best().SumPremultipliedColumns({sums_.data(), stride_, end - first}, columns_, to,
                                                        toStride);
    }

  private:
    std::int16_t* StripRow(int y) {
        return strip_.data() + static_cast<std::ptrdiff_t>(y - top_) * stripComponents_;
    }

    // Every source row of the strip is premultiplied once, for all result rows.
    void SumStrip(int left, int first, int end) {
        const int count = std::min(stripComponents_, components_ - left);
        for (int y = top_; y < bottom_; ++y) {
            ResampleKernels::Best().Premultiply(source_.Row(y) + left, count, StripRow(y));
        }
        for (int row = first; row < end; ++row) {
            const FixedWeights::Taps taps = rows_[row];
            lines_.clear();
            for (int i = 0; i < static_cast<int>(taps.weights.size()); ++i) {
                lines_.push_back(StripRow(std::min(taps.first + i, bottom_ - 1)));
            }
            ResampleKernels::Best().SumPremultipliedRows(lines_, taps.weights, rows_.Bits(), count,
                                                         sums_.data() + (row - first) * stride_ + left);
        }
    }

    const PixelArray& source_;
    const FixedWeights& rows_;
    const FixedWeights& columns_;
    int components_;
    std::ptrdiff_t stride_;
    int top_ = 0; // of the source rows that are premultiplied
    int bottom_ = 0;
    int stripComponents_ = 0;
    std::vector<std::int16_t> sums_;
    std::vector<std::int16_t> strip_;
    std::vector<const std::int16_t*> lines_;
};

// Result rows of an opaque picture, columns first: each source row is widened once, in groups that are kept
// in a ring.
class EnlargedBand {
  public:
    EnlargedBand(const PixelArray& source, const FixedWeights& rows, const FixedWeights& columns)
        : source_(source),
          rows_(rows),
          columns_(columns),
          sourceStride_(RoundedUp(source.Width() * kComponents, kRowBlock) + kRowBlock),
          stride_(columns.Length() * kComponents),
          streams_(IsStreamed(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(rows.Length()))),
          paired_(static_cast<std::size_t>(sourceStride_) * kGroup) {
        int mostTaps = 0;
        for (int row = 0; row < rows.Length(); ++row) {
            mostTaps = std::max(mostTaps, static_cast<int>(rows[row].weights.size()));
        }
        heldGroups_.assign(static_cast<std::size_t>((mostTaps + kGroup - 2) / kGroup) + 1, -1);
        ring_.resize(heldGroups_.size() * static_cast<std::size_t>(kGroup * stride_));
    }

    void MakeRows(int first, int end, std::uint8_t* to, std::ptrdiff_t toStride) {
        for (int row = first; row < end; ++row, to += toStride) {
            const FixedWeights::Taps taps = rows_[row];
            lines_.clear();
            for (int i = 0; i < static_cast<int>(taps.weights.size()); ++i) {
                lines_.push_back(Widened(std::min(taps.first + i, source_.Height() - 1)));
            }
            ResampleKernels::Best().SumSumsFixed(lines_, taps.weights, rows_.Bits(),
                                                 static_cast<int>(stride_), streams_, to);
        }
    }

  private:
    static constexpr int kGroup = 4; // rows that the columns' weights are shared by

    const std::int16_t* Widened(int row) {
        const int group = row / kGroup;
        const std::size_t place = static_cast<std::size_t>(group) % heldGroups_.size();
        std::int16_t* const widened = ring_.data() + static_cast<std::ptrdiff_t>(place) * kGroup * stride_;
        if (heldGroups_[place] != group) {
            const int count = std::min(kGroup, source_.Height() - group * kGroup);
            for (int i = 0; i < count; ++i) {
                PairRow(source_.Row(group * kGroup + i), paired_.data() + i * sourceStride_);
            }
            ResampleKernels::Best().SumColumnsToSums({paired_.data(), sourceStride_, count}, columns_,
                                                     widened, stride_);
            heldGroups_[place] = group;
        }
        return widened + row % kGroup * stride_;
    }

    void PairRow(const std::uint8_t* row, std::int16_t* to) const {
        constexpr int kBits = 14;
        const std::array<std::int16_t, 2> once{1 << kBits, 0};
        const std::array<const std::uint8_t*, 2> same{row, row};
        ResampleKernels::Best().SumRowsFixed(same, once, kBits, static_cast<int>(sourceStride_) - kRowBlock,
                                             to);
    }

    const PixelArray& source_;
    const FixedWeights& rows_;
    const FixedWeights& columns_;
    std::ptrdiff_t sourceStride_;
    std::ptrdiff_t stride_;
    bool streams_;
    std::vector<std::int16_t> paired_;
    std::vector<std::int16_t> ring_;
    std::vector<int> heldGroups_; // which is in which place
    std::vector<const std::int16_t*> lines_;
};

template <class Band>
PixelArray MadeInBands(const PixelArray& source, const FixedWeights& columns, const FixedWeights& rows) {
    PixelArray result = PixelArray::Like(source, columns.Length(), rows.Length());
    std::uint8_t* const pixels = result.WritableRows();
    const std::size_t sourceBytesPerRow = source.RowBytes() * static_cast<std::size_t>(source.Height()) /
                                          static_cast<std::size_t>(rows.Length());
    ForEachBand(rows.Length(), result.RowBytes() + sourceBytesPerRow, [&](int first, int end) {
        Band band(source, rows, columns);
        for (int top = first; top < end; top += kRowsTogether) {
            band.MakeRows(top, std::min(top + kRowsTogether, end), pixels + top * result.Stride(),
                          result.Stride());
        }
    });
    return result;
}

} // namespace

PixelArray ResampleFixed(const PixelArray& source, const AxisWeights& columns, const AxisWeights& rows) {
    using Use = FixedWeights::Use;
    if (source.HasAlpha()) {
        return MadeInBands<AlphaBand>(source, {columns, Use::Columns, kMostPremultipliedBits},
                                      {rows, Use::Rows, kMostPremultipliedBits});
    }
    if (rows.Length() > source.Height()) {
        return MadeInBands<EnlargedBand>(source, {columns, Use::Columns, kMostColumnBits},
                                         {rows, Use::Rows, kFixedBits});
    }
    return MadeInBands<OpaqueBand>(source, {columns, Use::Columns, kMostColumnBits},
                                   {rows, Use::Rows, kMostRowBits});
}

} // namespace pictorel::engine
