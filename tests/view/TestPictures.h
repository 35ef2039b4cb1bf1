// Pictures for the tests of the view.
#pragma once

#include "picture/PixelArray.h"
#include "picture/PixelMath.h"

#include <random>

namespace pictorel {

template <class Colour>
PixelArray MakePicture(int width, int height, const Colour& colour, bool hasAlpha = false) {
    PixelArray picture(width, height);
    picture.SetHasAlpha(hasAlpha);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Pixel pixel = colour(x, y);
            StorePixel(rows + y * picture.Stride() + 4 * x, hasAlpha ? pixel : pixel | kOpaque);
        }
    }
    return picture;
}

inline PixelArray MakeNoise(int width, int height, bool hasAlpha = false) {
    std::mt19937 random(static_cast<unsigned>(width * 40000 + height));
    return MakePicture(
        width, height, [&](int, int) { return static_cast<Pixel>(random()); }, hasAlpha);
}

inline Pixel PixelAt(const PixelArray& picture, int x, int y) {
    return LoadPixel(picture.Row(y) + 4 * x);
}

} // namespace pictorel
