// Tiles of a picture with margins, see Tiles.h.
#include "imaging/engine/Tiles.h"

#include "imaging/engine/Rounding.h"

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

void WidenOpaque(const std::uint8_t* in, int count, WideComponent* out) {
    for (int i = 0; i < count * kComponents; ++i) {
        out[i] = static_cast<WideComponent>(in[i] * kWideUnit);
    }
}

void WidenPremultiplied(const std::uint8_t* in, int count, WideComponent* out) {
    for (int x = 0; x < count; ++x, in += kComponents, out += kComponents) {
        const int alpha = in[3] * kWideUnit;
        for (int k = 0; k < 3; ++k) {
            out[k] = static_cast<WideComponent>((in[k] * alpha + 127) / 255);
        }
        out[3] = static_cast<WideComponent>(alpha);
    }
}

} // namespace

void LoadTile(const PixelArray& source, const TileArea& area, Margins margins, std::uint8_t* tile) {
    LoadRows(source, area, margins, tile, [](const std::uint8_t* in, int count, std::uint8_t* out) {
        std::memcpy(out, in, static_cast<std::size_t>(count) * kComponents);
    });
}

void LoadWideTile(const PixelArray& source, const TileArea& area, Margins margins, WideComponent* tile) {
    LoadRows(source, area, margins, tile, source.HasAlpha() ? WidenPremultiplied : WidenOpaque);
}

void StoreWideRow(const WideComponent* wide, int width, bool hasAlpha, std::uint8_t* out) {
    if (!hasAlpha) {
        for (int i = 0; i < width * kComponents; ++i) {
            out[i] = static_cast<std::uint8_t>((wide[i] + kWideUnit / 2) / kWideUnit);
        }
        return;
    }
    for (int x = 0; x < width; ++x, wide += kComponents, out += kComponents) {
        const float perAlpha = 255.0F / static_cast<float>(std::max<int>(wide[3], 1));
        for (int k = 0; k < 3; ++k) {
            out[k] = RoundToByte(static_cast<float>(wide[k]) * perAlpha);
        }
        out[3] = static_cast<std::uint8_t>((wide[3] + kWideUnit / 2) / kWideUnit);
    }
}

} // namespace pictorel::engine
