// What warps have in common that keep the canvas: its centre and its background.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/kernels/warp/WarpDriver.h"

#include <cstdint>
#include <numbers>

namespace pictorel::engine {

constexpr double Radians(double degrees) {
    return degrees * (std::numbers::pi / 180);
}

// What their maps have in common.
struct CanvasMap {
    static constexpr Outside kOutside = Outside::Background;
    static constexpr bool kIsAffine = false;
    static constexpr bool kIsEven = false;
    static constexpr bool kIsHorizontal = false;
    static constexpr bool kIsMonotonic = true;

    WarpPoint centre;
    int width;

    explicit CanvasMap(const PixelArray& source) : CanvasMap(source.Width(), source.Height()) {}
    CanvasMap(int canvasWidth, int canvasHeight)
        : centre{canvasWidth / 2.0, canvasHeight / 2.0}, width(canvasWidth) {}

    ColumnSpan Moved(int /*row*/) const { return {0, width}; }
};

// A map of the picture after a quarter turn to the right, seen before the turn: for windows, where turning
// all of the picture would cost more than the window.
template <class Map>
struct TurnedMap {
    static constexpr Outside kOutside = Map::kOutside;
    static constexpr bool kIsAffine = Map::kIsAffine;
    static constexpr bool kIsEven = Map::kIsAffine;
    static constexpr bool kIsHorizontal = false;
    static constexpr bool kIsMonotonic = Map::kIsMonotonic;

    Map map;
    int width; // before the turn
    int height;

    WarpPoint Source(WarpPoint p) const {
        const WarpPoint turned = map.Source({height - p.y, p.x});
        return {turned.y, height - turned.x};
    }

    LocalScale Scale(WarpPoint p) const {
        const LocalScale turned = map.Scale({height - p.y, p.x});
        return {{turned.perRow.y, -turned.perRow.x}, {-turned.perColumn.y, turned.perColumn.x}};
    }

    ColumnSpan Moved(int /*row*/) const { return {0, width}; }
};

// What a neutral number leaves.
PixelArray WindowOf(const PixelArray& source, const OptionalWindow& window);

// Opaque pixels of a colour 0x00BBGGRR.
void FillPixels(std::uint8_t* to, int count, std::uint32_t background);
PixelArray BackgroundOnly(const PixelArray& source, std::uint32_t background, const OptionalWindow& window);

} // namespace pictorel::engine
