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

    explicit CanvasMap(const PixelArray& source)
        : centre{source.Width() / 2.0, source.Height() / 2.0}, width(source.Width()) {}

    ColumnSpan Moved(int /*row*/) const { return {0, width}; }
};

// Opaque pixels of a colour 0x00BBGGRR.
void FillPixels(std::uint8_t* to, int count, std::uint32_t background);
PixelArray BackgroundOnly(const PixelArray& source, std::uint32_t background);

} // namespace pictorel::engine
