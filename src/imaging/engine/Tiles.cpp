// Tiles of a picture with margins, see Tiles.h.
#include "imaging/engine/Tiles.h"

#include <cstring>

namespace pictorel::engine {
namespace {

constexpr int kComponents = PixelArray::kComponents;

// Calls copy(source pixels, count, tile pixels) for each row of the tile's part inside the picture, then
// repeats the edge pixels outwards.
template <class Component, class Copy>
void LoadRows(const PixelArray& source, const TileArea& area, Margins margins, Component* tile,
              const Copy& copy) {
    const int tileWidth = area.width + 2 * margins.x;
    const int firstInside = std::max(area.left - margins.x, 0);
    const int endInside = std::min(area.left + area.width + margins.x, source.Width());
    const int before = firstInside - (area.left - margins.x);
    const int inside = endInside - firstInside;
    for (int y = area.top - margins.y; y < area.top + area.height + margins.y; ++y) {
        const std::uint8_t* const row = source.Row(std::clamp(y, 0, source.Height() - 1));
        Component* const edge = tile + static_cast<std::ptrdiff_t>(before) * kComponents;
        copy(row + static_cast<std::ptrdiff_t>(firstInside) * kComponents, inside, edge);
        for (Component* p = tile; p != edge; p += kComponents) {
            std::copy_n(edge, kComponents, p);
        }
        Component* const behind = edge + static_cast<std::ptrdiff_t>(inside) * kComponents;
        tile += static_cast<std::ptrdiff_t>(tileWidth) * kComponents;
        for (Component* p = behind; p != tile; p += kComponents) {
            std::copy_n(behind - kComponents, kComponents, p);
        }
    }
}

} // namespace

void LoadTile(const PixelArray& source, const TileArea& area, Margins margins, std::uint8_t* tile) {
    LoadRows(source, area, margins, tile, [](const std::uint8_t* in, int count, std::uint8_t* out) {
        std::memcpy(out, in, static_cast<std::size_t>(count) * kComponents);
    });
}

void LoadWideTile(const PixelArray& source, const TileArea& area, Margins margins, WideComponent* tile) {
    LoadRows(source, area, margins, tile, [&](const std::uint8_t* in, int count, WideComponent* out) {
        WidenRow(in, count, source.HasAlpha(), out);
    });
}

} // namespace pictorel::engine
