// Arithmetic on whole pixels, kept in one 32-bit number so that compilers turn loops over it into vector
// code.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace pictorel {

static_assert(std::endian::native == std::endian::little, "a pixel's bytes are blue, green, red, alpha");

// 0xAARRGGBB
using Pixel = std::uint32_t;

inline constexpr Pixel kOpaque = 0xff000000;
inline constexpr Pixel kEvenBytes = 0x00ff00ff;

inline Pixel LoadPixel(const std::uint8_t* place) noexcept {
    Pixel pixel;
    std::memcpy(&pixel, place, sizeof pixel);
    return pixel;
}

inline void StorePixel(std::uint8_t* place, Pixel pixel) noexcept {
    std::memcpy(place, &pixel, sizeof pixel);
}

// value / 255, rounded, for 0 <= value <= 255 * 255.
inline Pixel Over255(Pixel value) noexcept {
    const Pixel biased = value + 128;
    return (biased + (biased >> 8)) >> 8;
}

// Colour times alpha.
inline Pixel Premultiplied(Pixel pixel) noexcept {
    const Pixel alpha = pixel >> 24;
    Pixel redBlue = (pixel & kEvenBytes) * alpha + 0x00800080;
    redBlue = ((redBlue + ((redBlue >> 8) & kEvenBytes)) >> 8) & kEvenBytes;
    return (pixel & kOpaque) | redBlue | Over255(((pixel >> 8) & 0xff) * alpha) << 8;
}

// A premultiplied pixel laid over an opaque grey. No component overflows, since none is above its alpha.
inline Pixel OverGrey(Pixel pixel, Pixel grey) noexcept {
    const Pixel through = Over255(grey * (255 - (pixel >> 24)));
    return kOpaque | ((pixel & ~kOpaque) + through * 0x00010101);
}

// The mean of four pixels, rounded, component by component.
inline Pixel MeanOfFour(Pixel a, Pixel b, Pixel c, Pixel d) noexcept {
    const Pixel even = (a & kEvenBytes) + (b & kEvenBytes) + (c & kEvenBytes) + (d & kEvenBytes) + 0x00020002;
    const Pixel odd = ((a >> 8) & kEvenBytes) + ((b >> 8) & kEvenBytes) + ((c >> 8) & kEvenBytes) +
                      ((d >> 8) & kEvenBytes) + 0x00020002;
    return ((even >> 2) & kEvenBytes) | ((odd >> 2) & kEvenBytes) << 8;
}

} // namespace pictorel
