// Luma of a pixel: Rec. 709 on the encoded values (ITU-R BT.709-6, 3.2).
#pragma once

#include <cstdint>

namespace pictorel::engine {

// The weights in ten-thousandths, as the recommendation prints them; they add up to exactly kLumaUnit.
inline constexpr int kLumaRed = 2126;
inline constexpr int kLumaGreen = 7152;
inline constexpr int kLumaBlue = 722;
inline constexpr int kLumaUnit = 10000;
static_assert(kLumaRed + kLumaGreen + kLumaBlue == kLumaUnit);

// Exact luma times kLumaUnit of a blue, green, red, alpha pixel.
inline int ScaledLuma(const std::uint8_t* pixel) {
    return kLumaBlue * pixel[0] + kLumaGreen * pixel[1] + kLumaRed * pixel[2];
}

// Luma rounded to 0..255.
inline int Luma(const std::uint8_t* pixel) {
    return (ScaledLuma(pixel) + kLumaUnit / 2) / kLumaUnit;
}

} // namespace pictorel::engine
