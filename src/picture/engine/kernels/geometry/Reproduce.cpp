// Tiling reduced copies over the canvas, see Geometry.h.
#include "picture/ForEachBand.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/Resample.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/resample/ResampleSeparable.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace pictorel::engine {
namespace {

// Where tile i of `tiles` begins on a side of `length` pixels; tile `tiles` begins at the end.
int TileEdge(int i, int length, int tiles) {
    return static_cast<int>((2LL * i * length + tiles) / (2LL * tiles));
}

// The edges differ by one of two neighbouring numbers of pixels.
int TileLength(int i, int length, int tiles) {
    return TileEdge(i + 1, length, tiles) - TileEdge(i, length, tiles);
}

// The weights of a tile of `length / tiles` samples and, where that leaves a rest, behind it those of one
// that is longer by one.
AxisWeights BothTiles(int length, int tiles) {
    const int shorter = length / tiles;
    AxisWeights axis = LanczosWeights(length, shorter);
    if (length % tiles != 0) {
        const AxisWeights longer = LanczosWeights(length, shorter + 1);
        for (int i = 0; i <= shorter; ++i) {
            const AxisWeights::Taps taps = longer[i];
            axis.Append(taps.first, std::vector<double>(taps.weights.begin(), taps.weights.end()));
        }
    }
    return axis;
}

PixelArray TiledWhole(const PixelArray& source, int across, int down) {
    // The reduced copies, one for each pair of tile width and height, made in one go.
    const PixelArray copies =
        ResampleSeparable(source, BothTiles(source.Width(), across), BothTiles(source.Height(), down));
    const auto copyBegin = [](int tileLength, int shorter) { return tileLength == shorter ? 0 : shorter; };
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const auto fillRow = [&](int row, int tileRow) {
        const int top = TileEdge(tileRow, result.Height(), down);
        const int height = TileLength(tileRow, result.Height(), down);
        const std::uint8_t* const from = copies.Row(copyBegin(height, result.Height() / down) + row - top);
        for (int i = 0; i < across; ++i) {
            const int width = TileLength(i, result.Width(), across);
            std::memcpy(rows + row * result.Stride() + TileEdge(i, result.Width(), across) * kComponents,
                        from + copyBegin(width, result.Width() / across) * kComponents,
                        static_cast<std::size_t>(width) * kComponents);
        }
    };
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        int tileRow = 0;
        for (int row = first; row < end; ++row) {
            while (TileEdge(tileRow + 1, result.Height(), down) <= row) {
                ++tileRow;
            }
            fillRow(row, tileRow);
        }
    });
    return result;
}

// One axis of a tiled picture, reduced. All tiles are one picture of `tileLength` samples, which is continued
// by its own beginning to `continuedLength`: so what a result sample takes from two tiles lies side by side.
struct TiledAxis {
    AxisWeights weights;
    int tileLength;
    int continuedLength;
};

// Appends the weights of the samples of a tile that lie within `reach` of the middle of a result sample. The
// tile's first sample lies at `origin` from there and they are `spacing` apart, in pixels of the picture.
// Returns the first of them.
int AppendTile(double origin, double spacing, int tileLength, double reach, std::vector<double>& weights) {
    const auto sampleAt = [=](double place) {
        return static_cast<int>(std::clamp(std::ceil((place - origin) / spacing), 0.0, 1.0 * tileLength));
    };
    const int first = sampleAt(-reach);
    const int end = sampleAt(reach);
    const double scale = reach / kLanczosLobes;
    for (int k = first; k < end; ++k) {
        weights.push_back(Lanczos((origin + k * spacing) / scale) * spacing);
    }
    return first;
}

// On a reduced copy the tiles of the picture begin between pixels. Its pixels are made as if the picture were
// there: tiled, and the tiled picture reduced; those from `begin` to `end` are. The tile has twice as many
// samples as the copy has pixels for it, where there are as many: more would not be seen.
TiledAxis ReducedTiles(int length, int pictureLength, int tiles, int begin, int end) {
    const int seen = static_cast<int>(std::ceil(2.0 * length / tiles));
    const int tileLength = std::min({seen, length, pictureLength / tiles});
    TiledAxis axis{{}, tileLength, tileLength};
    const double scale = static_cast<double>(pictureLength) / length;
    const double reach = kLanczosLobes * std::max(scale, 1.0);
    std::vector<double> weights;
    int nearest = 0; // the first tile that a result sample reaches
    for (int i = begin; i < end; ++i) {
        const double centre = (i + 0.5) * scale;
        while (TileEdge(nearest + 1, pictureLength, tiles) <= centre - reach) {
            ++nearest;
        }
        weights.clear();
        int first = 0;
        for (int tile = nearest; tile < tiles; ++tile) {
            const int edge = TileEdge(tile, pictureLength, tiles);
            if (edge >= centre + reach) {
                break;
            }
            const double spacing = static_cast<double>(TileLength(tile, pictureLength, tiles)) / tileLength;
            const bool isFirst = weights.empty();
            const int sample = AppendTile(edge + spacing / 2 - centre, spacing, tileLength, reach, weights);
            first = isFirst ? sample : first;
        }
        axis.weights.Append(first, weights);
        axis.continuedLength = std::max(axis.continuedLength, first + static_cast<int>(weights.size()));
    }
    return axis;
}

// The picture, continued by its own beginning on the right and below.
PixelArray Continued(const PixelArray& tile, int width, int height) {
    PixelArray result = PixelArray::Like(tile, width, height);
    std::uint8_t* const rows = result.WritableRows();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; x += tile.Width()) {
            std::memcpy(rows + y * result.Stride() + x * kComponents, tile.Row(y % tile.Height()),
                        static_cast<std::size_t>(std::min(tile.Width(), width - x)) * kComponents);
        }
    }
    return result;
}

int PictureLength(int length, double reduction) {
    return static_cast<int>(std::clamp(std::round(length / reduction), 1.0, 1.0 * kMaximumSide));
}

// As a reduced copy shows the tiles, or a window of the picture does.
PixelArray TiledWindow(const PixelArray& source, int count, const Window& window) {
    const int pictureWidth = PictureLength(source.Width(), source.Reduction());
    const int pictureHeight = PictureLength(source.Height(), source.Reduction());
    const TiledAxis columns = ReducedTiles(source.Width(), pictureWidth, std::min(count, pictureWidth),
                                           window.left, window.Right());
    const TiledAxis rows = ReducedTiles(source.Height(), pictureHeight, std::min(count, pictureHeight),
                                        window.top, window.Bottom());
    const PixelArray tile = Resize(source, columns.tileLength, rows.tileLength);
    return ResampleSeparable(Continued(tile, columns.continuedLength, rows.continuedLength), columns.weights,
                             rows.weights);
}

} // namespace

PixelArray Reproduce(const PixelArray& source, int count, const OptionalWindow& window) {
    RequireRange("the number of copies", count, 1, kMaximumSide);
    CheckPictureSize(source.Width(), source.Height());
    if (count == 1) {
        return window ? Crop(source, *window) : source;
    }
    // Tiles of few pixels are worth their exact edges.
    constexpr double kSmallPicture = 1e6; // pixels
    const bool isSmall = static_cast<double>(source.Width()) * source.Height() <= kSmallPicture;
    if (source.Reduction() < 1 || (window && !isSmall)) {
        return TiledWindow(source, count, window.value_or(Window{0, 0, source.Width(), source.Height()}));
    }
    const PixelArray tiled =
        TiledWhole(source, std::min(count, source.Width()), std::min(count, source.Height()));
    return window ? Crop(tiled, *window) : tiled;
}

} // namespace pictorel::engine
