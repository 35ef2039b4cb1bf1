// Tiling reduced copies over the canvas, see Geometry.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/Geometry.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/Resample.h"
#include "imaging/engine/ResampleSeparable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace pictorel::engine {
namespace {

constexpr int kPixelBytes = PixelArray::kComponents;

// Where tile i of `tiles` begins on a side of `length` pixels; tile `tiles` begins at the end.
int TileEdge(int i, int length, int tiles) {
    return static_cast<int>((2LL * i * length + tiles) / (2LL * tiles));
}

// The edges differ by one of two neighbouring numbers of pixels.
int TileLength(int i, int length, int tiles) {
    return TileEdge(i + 1, length, tiles) - TileEdge(i, length, tiles);
}

// The reduced copies of a picture, at most one for each pair of tile width and height.
class TileCopies {
  public:
    TileCopies(const PixelArray& source, int across, int down)
        : width_(source.Width() / across), height_(source.Height() / down) {
        for (int taller = 0; taller < 2; ++taller) {
            for (int wider = 0; wider < 2; ++wider) {
                const bool isUsed = (wider == 0 || source.Width() % across != 0) &&
                                    (taller == 0 || source.Height() % down != 0);
                if (isUsed) {
                    copies_[Index(wider, taller)] = Resize(source, width_ + wider, height_ + taller);
                }
            }
        }
    }

    const PixelArray& Of(int width, int height) const {
        return copies_[Index(width - width_, height - height_)];
    }

  private:
    static std::size_t Index(int wider, int taller) {
        return 2 * static_cast<std::size_t>(taller) + static_cast<std::size_t>(wider);
    }

    int width_;
    int height_;
    std::array<PixelArray, 4> copies_;
};

PixelArray TiledWhole(const PixelArray& source, int across, int down) {
    const TileCopies copies(source, across, down);
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const auto fillRow = [&](int row, int tileRow) {
        const int top = TileEdge(tileRow, result.Height(), down);
        const int height = TileLength(tileRow, result.Height(), down);
        for (int i = 0; i < across; ++i) {
            const PixelArray& copy = copies.Of(TileLength(i, result.Width(), across), height);
            std::memcpy(rows + row * result.Stride() + TileEdge(i, result.Width(), across) * kPixelBytes,
                        copy.Row(row - top), copy.RowBytes());
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

// On a reduced copy the tiles of the picture begin between pixels. Its pixels are made as if the picture were
// there: tiled, and the tiled picture reduced. Both are weighted sums, and so is what they make together.
AxisWeights ReducedTiles(int length, int pictureLength, int tiles) {
    const AxisWeights reduce = LanczosWeights(pictureLength, length);
    const int shorter = pictureLength / tiles;
    const std::array<AxisWeights, 2> tileWeights{LanczosWeights(length, shorter),
                                                 LanczosWeights(length, shorter + 1)};
    std::vector<AxisWeights::Taps> tiled; // of every pixel of the tiled picture, what it takes from the copy
    for (int tile = 0; tile < tiles; ++tile) {
        const int tileLength = TileLength(tile, pictureLength, tiles);
        for (int i = 0; i < tileLength; ++i) {
            tiled.push_back(tileWeights[static_cast<std::size_t>(tileLength - shorter)][i]);
        }
    }
    AxisWeights axis;
    std::vector<double> dense(static_cast<std::size_t>(length));
    for (int x = 0; x < length; ++x) {
        std::fill(dense.begin(), dense.end(), 0.0);
        const AxisWeights::Taps reduced = reduce[x];
        for (std::size_t k = 0; k < reduced.weights.size(); ++k) {
            const AxisWeights::Taps& taps = tiled[static_cast<std::size_t>(reduced.first) + k];
            for (std::size_t i = 0; i < taps.weights.size(); ++i) {
                dense[static_cast<std::size_t>(taps.first) + i] +=
                    static_cast<double>(reduced.weights[k]) * taps.weights[i];
            }
        }
        axis.Append(0, dense);
    }
    return axis;
}

int PictureLength(int length, double reduction) {
    return static_cast<int>(std::clamp(std::round(length / reduction), 1.0, 1.0 * kMaximumSide));
}

} // namespace

PixelArray Reproduce(const PixelArray& source, int count) {
    RequireRange("the number of copies", count, 1, kMaximumSide);
    CheckPictureSize(source.Width(), source.Height());
    if (count == 1) {
        return source;
    }
    if (source.Reduction() < 1) {
        const int pictureWidth = PictureLength(source.Width(), source.Reduction());
        const int pictureHeight = PictureLength(source.Height(), source.Reduction());
        return ResampleSeparable(
            source, ReducedTiles(source.Width(), pictureWidth, std::min(count, pictureWidth)),
            ReducedTiles(source.Height(), pictureHeight, std::min(count, pictureHeight)));
    }
    return TiledWhole(source, std::min(count, source.Width()), std::min(count, source.Height()));
}

} // namespace pictorel::engine
