// Mosaic: blocks of one colour, see Stylize.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/ResampleSeparable.h"
#include "imaging/engine/Stylize.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <span>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;

// Sums of every column of a block's rows: colours times alpha, and alpha.
using ColumnSum = std::array<std::uint32_t, kComponents>;
static_assert(std::uint64_t{kMaximumSide} * 255 * 255 < UINT32_MAX);

// Without alpha the factor is left out, which leaves the same means and plain additions.
void AddRow(const std::uint8_t* row, bool hasAlpha, std::span<ColumnSum> sums) {
    if (hasAlpha) {
        for (ColumnSum& sum : sums) {
            for (int c = 0; c < 3; ++c) {
                sum[c] += static_cast<std::uint32_t>(row[c]) * row[3];
            }
            sum[3] += row[3];
            row += kComponents;
        }
        return;
    }
    for (ColumnSum& sum : sums) {
        for (int c = 0; c < kComponents; ++c) {
            sum[c] += row[c];
        }
        row += kComponents;
    }
}

std::array<std::uint8_t, kComponents> MeanColour(std::span<const ColumnSum> columns, int rows,
                                                 bool hasAlpha) {
    std::array<std::uint64_t, kComponents> sums{};
    for (const ColumnSum& column : columns) {
        for (int c = 0; c < kComponents; ++c) {
            sums[c] += column[c];
        }
    }
    const std::uint64_t pixels = columns.size() * static_cast<std::uint64_t>(rows);
    const std::uint64_t colourWeight = hasAlpha ? sums[3] : pixels;
    std::array<std::uint8_t, kComponents> mean{};
    for (int c = 0; c < 3; ++c) {
        mean[c] = colourWeight == 0 ? std::uint8_t{0}
                                    : static_cast<std::uint8_t>((sums[c] + colourWeight / 2) / colourWeight);
    }
    mean[3] = static_cast<std::uint8_t>((sums[3] + pixels / 2) / pixels);
    return mean;
}

void FillBlockRow(const PixelArray& source, int size, int top, std::vector<ColumnSum>& sums, std::uint8_t* to,
                  std::ptrdiff_t stride) {
    const int rows = std::min(size, source.Height() - top);
    std::fill(sums.begin(), sums.end(), ColumnSum{});
    for (int y = 0; y < rows; ++y) {
        AddRow(source.Row(top + y), source.HasAlpha(), sums);
    }
    for (int left = 0; left < source.Width(); left += size) {
        const int columns = std::min(size, source.Width() - left);
        const auto block =
            std::span(sums).subspan(static_cast<std::size_t>(left), static_cast<std::size_t>(columns));
        const auto mean = MeanColour(block, rows, source.HasAlpha());
        for (int x = left; x < left + columns; ++x) {
            std::memcpy(to + x * kComponents, mean.data(), kComponents);
        }
    }
    for (int y = 1; y < rows; ++y) {
        std::memcpy(to + y * stride, to, source.RowBytes());
    }
}

PixelArray WholeBlocks(const PixelArray& source, int size) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const int blockRows = (source.Height() + size - 1) / size;
    const std::size_t bytesPerBlockRow = 2 * source.RowBytes() * static_cast<std::size_t>(size);
    ForEachBand(blockRows, bytesPerBlockRow, [&](int first, int end) {
        std::vector<ColumnSum> sums(static_cast<std::size_t>(source.Width()));
        for (int i = first; i < end; ++i) {
            const int top = i * size;
            FillBlockRow(source, size, top, sums, rows + top * result.Stride(), result.Stride());
        }
    });
    return result;
}

// The means of blocks of a fractional length: each source sample counts as far as it lies in the block.
AxisWeights BlockMeans(int length, double size) {
    AxisWeights axis;
    for (int i = 0; i * size < length; ++i) {
        AppendMean(axis, i * size, std::min((i + 1) * size, static_cast<double>(length)), length);
    }
    return axis;
}

// The way back: each sample shows the blocks it touches as far as they reach into it.
AxisWeights BlocksShown(int length, double size, int blocks) {
    AxisWeights axis;
    for (int i = 0; i < length; ++i) {
        AppendMean(axis, i / size, std::min((i + 1) / size, length / size), blocks);
    }
    return axis;
}

// A reduced copy shows the blocks of the picture reduced: their edges lie between its pixels.
PixelArray FractionalBlocks(const PixelArray& source, double size) {
    const AxisWeights columns = BlockMeans(source.Width(), size);
    const AxisWeights rows = BlockMeans(source.Height(), size);
    const PixelArray blocks = ResampleSeparable(source, columns, rows);
    return ResampleSeparable(blocks, BlocksShown(source.Width(), size, columns.Length()),
                             BlocksShown(source.Height(), size, rows.Length()));
}

} // namespace

PixelArray Mosaic(const PixelArray& source, int size) {
    RequireRange("the size of the mosaic", size, 0, kMaximumSide);
    const double scaledSize = size * source.Reduction();
    if (size <= 1 || scaledSize <= 1) {
        return source;
    }
    if (scaledSize == std::floor(scaledSize)) {
        return WholeBlocks(source, static_cast<int>(scaledSize));
    }
    return FractionalBlocks(source, scaledSize);
}

} // namespace pictorel::engine
