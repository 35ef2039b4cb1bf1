// Gaussian blur and the unsharp mask made from it, see Filters.h.
#include "imaging/engine/Convolution.h"
#include "imaging/engine/Filters.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Tiles.h"

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;
constexpr double kWidest = 1000;

struct BlurScratch {
    std::vector<WideComponent> tile;
    std::vector<WideComponent> columns;
    std::vector<WideComponent> row;
};

// Blurs tile by tile, down the columns first, and hands out each row as finish(wide row, x, y, width).
template <class Finish>
void BlurRows(const PixelArray& source, const HalfKernel& kernel, const Finish& finish) {
    const int radius = static_cast<int>(kernel.size()) - 1;
    ForEachTile<BlurScratch>(
        source.Width(), source.Height(), [&](const TileArea& area, BlurScratch& scratch) {
            const std::ptrdiff_t rowLength =
                static_cast<std::ptrdiff_t>(area.width + 2 * radius) * kComponents;
            const auto columnsSize = static_cast<std::size_t>(area.height * rowLength);
            scratch.tile.resize(static_cast<std::size_t>((area.height + 2 * radius) * rowLength));
            scratch.columns.resize(columnsSize);
            scratch.row.resize(static_cast<std::size_t>(area.width) * kComponents);
            LoadWideTile(source, area, {radius, radius}, scratch.tile.data());
            Convolve(scratch.tile.data() + radius * rowLength, rowLength, kernel, scratch.columns.data(),
                     columnsSize);
            for (int y = 0; y < area.height; ++y) {
                Convolve(scratch.columns.data() + y * rowLength +
                             static_cast<std::ptrdiff_t>(radius) * kComponents,
                         kComponents, kernel, scratch.row.data(), scratch.row.size());
                finish(scratch.row.data(), area.left, area.top + y, area.width);
            }
        });
}

} // namespace

PixelArray GaussianBlur(const PixelArray& source, double sigma) {
    RequireRange("blur", sigma, 0, kWidest);
    const HalfKernel kernel = GaussianKernel(sigma * source.Reduction());
    if (kernel.empty()) {
        return source;
    }
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    BlurRows(source, kernel, [&](const WideComponent* wide, int x, int y, int width) {
        NarrowRow(wide, width, source.HasAlpha(),
                  rows + y * result.Stride() + static_cast<std::ptrdiff_t>(x) * kComponents);
    });
    return result;
}

PixelArray UnsharpMask(const PixelArray& source, double amount) {
    RequireRange("sharpen", amount, 0, kWidest);
    const HalfKernel kernel = GaussianKernel(source.Reduction());
    if (amount == 0 || kernel.empty()) {
        return source;
    }
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    BlurRows(source, kernel, [&](const WideComponent* wide, int x, int y, int width) {
        const std::ptrdiff_t offset = static_cast<std::ptrdiff_t>(x) * kComponents;
        SharpenRow(source.Row(y) + offset, wide, width, source.HasAlpha(), static_cast<float>(amount),
                   rows + y * result.Stride() + offset);
    });
    return result;
}

} // namespace pictorel::engine
