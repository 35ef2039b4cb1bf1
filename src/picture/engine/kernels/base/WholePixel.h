// A pixel taken as one 32-bit number, for operations that move pixels without looking inside.
#pragma once

#include "picture/PixelMath.h" // LoadPixel, StorePixel

#include <cstdint>

namespace pictorel::engine {

// The opaque pixel of a colour given as 0x00BBGGRR.
constexpr std::uint32_t OpaquePixel(std::uint32_t colour) noexcept {
    const std::uint32_t red = colour & 0xFF;
    const std::uint32_t green = colour >> 8 & 0xFF;
    const std::uint32_t blue = colour >> 16 & 0xFF;
    return blue | green << 8 | red << 16 | kOpaque;
}

// What geometry exposes: clear in a picture that has transparency, the background colour in another.
constexpr std::uint32_t ExposedPixel(std::uint32_t background, bool hasAlpha) noexcept {
    return hasAlpha ? 0 : OpaquePixel(background);
}

} // namespace pictorel::engine
