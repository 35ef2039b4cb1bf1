// Lengths on the window: twips, fifteen to the pixel.
#pragma once

#include <cmath>

namespace pictorel {

inline constexpr float kTwipsPerPixel = 15.0F;

struct TwipsRect {
    float left = 0;
    float top = 0;
    float width = 0;
    float height = 0;
};

// A place given in pixels.
constexpr TwipsRect InPixels(int left, int top, int width, int height) {
    const auto twips = [](int pixels) { return static_cast<float>(pixels) * kTwipsPerPixel; };
    return {twips(left), twips(top), twips(width), twips(height)};
}

inline int TwipsToPixels(float twips) {
    return static_cast<int>(std::lround(twips / kTwipsPerPixel));
}

inline float PixelsToTwips(int pixels) {
    return static_cast<float>(pixels) * kTwipsPerPixel;
}

} // namespace pictorel
