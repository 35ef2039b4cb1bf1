// Rec. 709 luma of a pixel on its encoded values (ITU-R BT.709-6, 3.2).
#pragma once

#include <cstdint>

namespace pictorel::engine {

inline constexpr float kLumaRed = 0.2126F;
inline constexpr float kLumaGreen = 0.7152F;
inline constexpr float kLumaBlue = 0.0722F;

// Of a pixel taken as one number with blue in its lowest byte.
constexpr float LumaOf(std::uint32_t pixel) noexcept {
    // Through int: conversions from unsigned numbers are slow.
    const auto blue = static_cast<float>(static_cast<std::int32_t>(pixel & 0xFF));
    const auto green = static_cast<float>(static_cast<std::int32_t>(pixel >> 8 & 0xFF));
    const auto red = static_cast<float>(static_cast<std::int32_t>(pixel >> 16 & 0xFF));
    return kLumaBlue * blue + kLumaGreen * green + kLumaRed * red;
}

} // namespace pictorel::engine
