// Neighbourhood operations work on tiles: rectangles of a picture with margins, small enough to stay in
// cache.
#pragma once

#include "picture/ForEachBand.h"
#include "picture/PixelArray.h"
#include "picture/engine/kernels/base/Sizes.h"

#include <algorithm>
#include <cstdint>

namespace pictorel::engine {

// Pixels of the picture, without margins.
struct TileArea {
    int left;
    int top;
    int width;
    int height;
};

struct Margins {
    int x;
    int y;
};

// Copies the area with `margins` on all four sides into rows of (area.width + 2 margins.x) pixels without
// gaps; beyond its border the picture is continued by its edge pixels.
void LoadTile(const PixelArray& source, const TileArea& area, Margins margins, std::uint8_t* tile);

// Calls body(area, scratch) for areas that cover a picture of this size once, on all cores; `scratch` is a
// Scratch that consecutive calls on one thread share.
template <class Scratch, class Body>
void ForEachTile(int width, int height, const Body& body) {
    constexpr int kTileWidth = 8192; // mostly whole rows, which the processor fetches ahead
    constexpr int kTileHeight = 32;
    const int tileRows = (height + kTileHeight - 1) / kTileHeight;
    const auto bytesPerTileRow = std::size_t{2} * kTileHeight * kComponents * static_cast<std::size_t>(width);
    ForEachBand(tileRows, bytesPerTileRow, [&](int first, int end) {
        Scratch scratch;
        for (int row = first; row < end; ++row) {
            const int top = row * kTileHeight;
            for (int left = 0; left < width; left += kTileWidth) {
                body(TileArea{left, top, std::min(kTileWidth, width - left),
                              std::min(kTileHeight, height - top)},
                     scratch);
            }
        }
    });
}

} // namespace pictorel::engine
