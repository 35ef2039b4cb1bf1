// A pixel taken as one 32-bit number, for operations that move pixels without looking inside.
#pragma once

#include <cstdint>
#include <cstring>

namespace pictorel::engine {

// Blue is the lowest byte and alpha the highest on the little-endian machines we run on.
inline std::uint32_t LoadPixel(const std::uint8_t* from) noexcept {
    std::uint32_t pixel;
    std::memcpy(&pixel, from, sizeof pixel);
    return pixel;
}

inline void StorePixel(std::uint8_t* to, std::uint32_t pixel) noexcept {
    std::memcpy(to, &pixel, sizeof pixel);
}

// The opaque pixel of a colour given as 0x00BBGGRR.
constexpr std::uint32_t OpaquePixel(std::uint32_t colour) noexcept {
    const std::uint32_t red = colour & 0xFF;
    const std::uint32_t green = colour >> 8 & 0xFF;
    const std::uint32_t blue = colour >> 16 & 0xFF;
    return blue | green << 8 | red << 16 | 0xFF000000U;
}

} // namespace pictorel::engine
