// Tiles of a picture with margins, see Tiles.h.
#include "picture/engine/kernels/base/Tiles.h"

#include "picture/engine/kernels/base/Sizes.h"

#include <cstring>

namespace pictorel::engine {

void LoadTile(const PixelArray& source, const TileArea& area, Margins margins, std::uint8_t* tile) {
    const int tileWidth = area.width + 2 * margins.x;
    const int firstInside = std::max(area.left - margins.x, 0);
    const int endInside = std::min(area.left + area.width + margins.x, source.Width());
    const int before = firstInside - (area.left - margins.x);
    const int inside = endInside - firstInside;
    for (int y = area.top - margins.y; y < area.top + area.height + margins.y; ++y) {
        const std::uint8_t* const row = source.Row(std::clamp(y, 0, source.Height() - 1));
        std::uint8_t* const edge = tile + static_cast<std::ptrdiff_t>(before) * kComponents;
        std::memcpy(edge, row + static_cast<std::ptrdiff_t>(firstInside) * kComponents,
                    static_cast<std::size_t>(inside) * kComponents);
        for (std::uint8_t* p = tile; p != edge; p += kComponents) {
            std::copy_n(edge, kComponents, p);
        }
        std::uint8_t* const behind = edge + static_cast<std::ptrdiff_t>(inside) * kComponents;
        tile += static_cast<std::ptrdiff_t>(tileWidth) * kComponents;
        for (std::uint8_t* p = behind; p != tile; p += kComponents) {
            std::copy_n(behind - kComponents, kComponents, p);
        }
    }
}

} // namespace pictorel::engine
