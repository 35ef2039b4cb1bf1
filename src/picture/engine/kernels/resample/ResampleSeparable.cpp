// Rows are summed before columns, see ResampleSeparable.h: when reducing, that is where the work is, and it
// needs no shuffling. The sums of a few rows, in narrow strips so that the source lines stay in the cache
// while several result rows are made of them, are all that is kept between the passes.
#include "picture/engine/kernels/resample/ResampleSeparable.h"

#include "picture/ForEachBand.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/resample/SeparableKernels.h"

#include <algorithm>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kStripPixels = 256;

void SumRowsOfStrips(const PixelArray& source, const AxisWeights& rows, int firstRow, int endRow, float* to) {
    const SeparableKernels& kernels = SeparableKernels::Best();
    const auto sum = source.HasAlpha() ? kernels.SumRowsPremultiplied : kernels.SumRows;
    const std::ptrdiff_t rowFloats = static_cast<std::ptrdiff_t>(source.Width()) * kComponents;
    for (int left = 0; left < source.Width(); left += kStripPixels) {
        const int pixels = std::min(kStripPixels, source.Width() - left);
        for (int row = firstRow; row < endRow; ++row) {
            const AxisWeights::Taps taps = rows[row];
            sum(source.Row(taps.first) + left * kComponents, source.Stride(), taps.weights, pixels,
                to + (row - firstRow) * rowFloats + left * kComponents);
        }
    }
}

} // namespace

PixelArray ResampleSeparable(const PixelArray& source, const AxisWeights& columns, const AxisWeights& rows) {
    PixelArray result = PixelArray::Like(source, columns.Length(), rows.Length());
    std::uint8_t* const pixels = result.WritableRows();
    const SeparableKernels& kernels = SeparableKernels::Best();
    const auto sumColumns = source.HasAlpha() ? kernels.SumColumnsPremultiplied : kernels.SumColumns;
    const std::ptrdiff_t rowFloats = static_cast<std::ptrdiff_t>(source.Width()) * kComponents;
    const std::size_t sourceBytesPerRow = source.RowBytes() * static_cast<std::size_t>(source.Height()) /
                                          static_cast<std::size_t>(rows.Length());
    ForEachBand(rows.Length(), result.RowBytes() + sourceBytesPerRow, [&](int first, int end) {
        std::vector<float> sums(static_cast<std::size_t>(std::min(end - first, kRowsTogether) * rowFloats));
        for (int top = first; top < end; top += kRowsTogether) {
            const int bottom = std::min(top + kRowsTogether, end);
            SumRowsOfStrips(source, rows, top, bottom, sums.data());
            for (int row = top; row < bottom; ++row) {
                sumColumns(sums.data() + (row - top) * rowFloats, columns, pixels + row * result.Stride());
            }
        }
    });
    return result;
}

} // namespace pictorel::engine
