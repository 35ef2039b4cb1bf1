// Mosaic: blocks of one colour, see Stylize.h.
#include "picture/ForEachBand.h"
#include "picture/engine/Stylize.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/RowKernels.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/resample/ResampleSeparable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <span>
#include <vector>

namespace pictorel::engine {
namespace {

using Colour = std::array<std::uint8_t, kComponents>;

// Sums of every column of a row of blocks: colours times alpha, and alpha.
class ColumnSums {
  public:
    explicit ColumnSums(const PixelArray& source) : source_(source) {}

    void Begin() { sums_.assign(static_cast<std::size_t>(source_.Width()), {}); }

    void AddRow(const std::uint8_t* row) {
        for (Sum& sum : sums_) {
            const std::uint32_t weight = source_.HasAlpha() ? row[3] : 1;
            for (int c = 0; c < 3; ++c) {
                sum[c] += row[c] * weight;
            }
            sum[3] += row[3];
            row += kComponents;
        }
    }

    Colour MeanColour(int left, int columns, int rows) const {
        std::array<std::uint64_t, kComponents> sums{};
        for (const Sum& column :
             std::span(sums_).subspan(static_cast<std::size_t>(left), static_cast<std::size_t>(columns))) {
            for (int c = 0; c < kComponents; ++c) {
                sums[c] += column[c];
            }
        }
        const std::uint64_t pixels = std::max(
            static_cast<std::uint64_t>(columns) * static_cast<std::uint64_t>(rows), std::uint64_t{1});
        const std::uint64_t weight = source_.HasAlpha() ? sums[3] : pixels;
        Colour mean{};
        for (int c = 0; c < 3; ++c) {
            mean[c] =
                weight == 0 ? std::uint8_t{0} : static_cast<std::uint8_t>((sums[c] + weight / 2) / weight);
        }
        mean[3] = static_cast<std::uint8_t>((sums[3] + pixels / 2) / pixels);
        return mean;
    }

  private:
    using Sum = std::array<std::uint32_t, kComponents>;
    static_assert(std::uint64_t{kMaximumSide} * 255 * 255 < UINT32_MAX);

    const PixelArray& source_;
    std::vector<Sum> sums_;
};

// The same means for low blocks of a picture without alpha, whose sums fit into 16 bits.
class SmallSums {
  public:
    static constexpr int kMostRows = UINT16_MAX / UINT8_MAX;

    explicit SmallSums(const PixelArray& source) : sums_(static_cast<std::size_t>(source.Width())) {}

    void Begin() { std::fill(sums_.begin(), sums_.end(), Sum{}); }

    void AddRow(const std::uint8_t* row) {
        RowKernels::Best().AddBytes(row, sums_.size() * kComponents, sums_.front().data());
    }

    Colour MeanColour(int left, int columns, int rows) {
        std::array<std::uint32_t, kComponents> sums{};
        for (const Sum& column :
             std::span(sums_).subspan(static_cast<std::size_t>(left), static_cast<std::size_t>(columns))) {
            for (int c = 0; c < kComponents; ++c) {
                sums[c] += column[c];
            }
        }
        if (pixels_ != columns * rows) {
            pixels_ = columns * rows;
            reciprocal_ =
                (kUnit + static_cast<std::uint64_t>(pixels_) - 1) / static_cast<std::uint64_t>(pixels_);
        }
        Colour mean{};
        for (int c = 0; c < kComponents; ++c) {
            const std::uint64_t sum = sums[c] + static_cast<std::uint64_t>(pixels_ / 2);
            mean[c] = static_cast<std::uint8_t>((sum * reciprocal_) >> kBits);
        }
        return mean;
    }

  private:
    using Sum = std::array<std::uint16_t, kComponents>;

    // A product with the reciprocal is the exact quotient: what it is too large, times a sum, stays below
    // the unit.
    static constexpr int kBits = 41;
    static constexpr std::uint64_t kUnit = std::uint64_t{1} << kBits;
    static_assert(std::uint64_t{256} * kMostRows * kMostRows * kMostRows * kMostRows < kUnit);

    std::vector<Sum> sums_;
    int pixels_ = 0;
    std::uint64_t reciprocal_ = 0;
};

template <class Sums>
void FillBlockRow(const PixelArray& source, int size, int top, int rows, Sums& sums, std::uint8_t* to) {
    sums.Begin();
    for (int y = 0; y < rows; ++y) {
        sums.AddRow(source.Row(top + y));
    }
    for (int left = 0; left < source.Width(); left += size) {
        const int columns = std::min(size, source.Width() - left);
        const Colour mean = sums.MeanColour(left, columns, rows);
        for (int x = left; x < left + columns; ++x) {
            std::memcpy(to + x * kComponents, mean.data(), kComponents);
        }
    }
}

template <class Sums>
PixelArray WholeBlocks(const PixelArray& source, int size) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const bool streams = IsStreamed(result);
    const int blockRows = (source.Height() + size - 1) / size;
    const std::size_t bytesPerBlockRow = 2 * source.RowBytes() * static_cast<std::size_t>(size);
    ForEachBand(blockRows, bytesPerBlockRow, [&](int first, int end) {
        Sums sums(source);
        std::vector<std::uint8_t> blocks(source.RowBytes());
        for (int top = first * size; top < std::min(end * size, source.Height()); top += size) {
            const int height = std::min(size, source.Height() - top);
            FillBlockRow(source, size, top, height, sums, blocks.data());
            for (int y = top; y < top + height; ++y) {
                const int ahead = std::min(y + height, source.Height() - 1);
                RowKernels::Best().CopyRow(blocks.data(), blocks.size(), streams, rows + y * result.Stride(),
                                           source.Row(ahead));
            }
        }
    });
    return result;
}

// Blocks along one side of a copy: `size` of its samples each, the first of which begins at `begin`, before
// or at the copy's own beginning.
struct BlockAxis {
    double size;
    double begin;
    int length;

    // Block i from here to there, as far as it lies in the copy.
    double Begin(int i) const { return std::max(begin + i * size, 0.0); }
    double End(int i) const { return std::min(begin + (i + 1) * size, static_cast<double>(length)); }
};

BlockAxis BlocksOf(int length, int size, int cornerInPicture, double reduction) {
    return {size * reduction, -(cornerInPicture % size) * reduction, length};
}

// The means of the blocks: each source sample counts as far as it lies in the block.
AxisWeights BlockMeans(const BlockAxis& blocks) {
    AxisWeights axis;
    for (int i = 0; blocks.begin + i * blocks.size < blocks.length; ++i) {
        AppendMean(axis, blocks.Begin(i), blocks.End(i), blocks.length);
    }
    return axis;
}

// The way back: each sample shows the blocks it touches as far as they reach into it.
AxisWeights BlocksShown(const BlockAxis& blocks, int count) {
    AxisWeights axis;
    const double end = (blocks.length - blocks.begin) / blocks.size;
    for (int i = 0; i < blocks.length; ++i) {
        AppendMean(axis, (i - blocks.begin) / blocks.size,
                   std::min((i + 1 - blocks.begin) / blocks.size, end), count);
    }
    return axis;
}

// A reduced copy shows the blocks of the picture reduced: their edges lie between its pixels.
PixelArray FractionalBlocks(const PixelArray& source, int size) {
    const BlockAxis across = BlocksOf(source.Width(), size, source.LeftInPicture(), source.Reduction());
    const BlockAxis down = BlocksOf(source.Height(), size, source.TopInPicture(), source.Reduction());
    const AxisWeights columns = BlockMeans(across);
    const AxisWeights rows = BlockMeans(down);
    const PixelArray blocks = ResampleSeparable(source, columns, rows);
    return ResampleSeparable(blocks, BlocksShown(across, columns.Length()), BlocksShown(down, rows.Length()));
}

} // namespace

PixelArray Mosaic(const PixelArray& source, int size) {
    RequireRange("the size of the mosaic", size, 0, kMaximumSide);
    const double scaledSize = size * source.Reduction();
    if (size <= 1 || scaledSize <= 1) {
        return source;
    }
    const bool beginsWithBlock = source.LeftInPicture() % size == 0 && source.TopInPicture() % size == 0;
    if (beginsWithBlock && scaledSize == std::floor(scaledSize)) {
        const auto pixels = static_cast<int>(scaledSize);
        return source.HasAlpha() || pixels > SmallSums::kMostRows ? WholeBlocks<ColumnSums>(source, pixels)
                                                                  : WholeBlocks<SmallSums>(source, pixels);
    }
    return FractionalBlocks(source, size);
}

} // namespace pictorel::engine
