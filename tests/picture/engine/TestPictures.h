// Pictures for the tests of the engine, and ways to look at them.
#pragma once

#include "picture/PixelArray.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace pictorel::engine::test {

using Pixel = std::array<std::uint8_t, 4>; // blue, green, red, alpha

struct Size {
    int width;
    int height;
};

inline Pixel At(const PixelArray& picture, int x, int y) {
    const std::uint8_t* const p = picture.Row(y) + static_cast<std::ptrdiff_t>(x) * 4;
    return {p[0], p[1], p[2], p[3]};
}

// A picture whose pixel at x, y is pixelAt(x, y).
template <class PixelAt>
PixelArray Draw(Size size, const PixelAt& pixelAt) {
    PixelArray picture(size.width, size.height);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const Pixel pixel = pixelAt(x, y);
            std::copy(pixel.begin(), pixel.end(),
                      rows + y * picture.Stride() + static_cast<std::ptrdiff_t>(x) * 4);
        }
    }
    return picture;
}

inline PixelArray Constant(Size size, Pixel pixel) {
    PixelArray picture = Draw(size, [=](int, int) { return pixel; });
    picture.SetHasAlpha(pixel[3] != 255);
    return picture;
}

enum class Alpha { None, Random };

// Every component is random, the extremes 0 and 255 and greys far more often than chance would have them.
inline PixelArray Random(Size size, Alpha alpha = Alpha::None, unsigned seed = 1) {
    std::mt19937 generator(seed);
    const auto component = [&] {
        const unsigned r = generator();
        return static_cast<std::uint8_t>((r & 0x700U) == 0 ? 0 : (r & 0x3800U) == 0 ? 255 : r & 255U);
    };
    PixelArray picture = Draw(size, [&](int, int) {
        Pixel pixel{component(), component(), component(), 255};
        if (generator() % 8 == 0) {
            pixel[1] = pixel[2] = pixel[0];
        }
        if (alpha == Alpha::Random) {
            pixel[3] = component();
        }
        return pixel;
    });
    picture.SetHasAlpha(alpha == Alpha::Random);
    return picture;
}

// The rectangle of `picture` at x, y, as a picture of its own.
inline PixelArray Crop(const PixelArray& picture, int left, int top, Size size) {
    PixelArray crop = Draw(size, [&](int x, int y) { return At(picture, left + x, top + y); });
    crop.SetHasAlpha(picture.HasAlpha());
    return crop;
}

inline ::testing::AssertionResult SamePixels(const PixelArray& a, const PixelArray& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height()) {
        return ::testing::AssertionFailure() << "sizes differ";
    }
    for (int y = 0; y < a.Height(); ++y) {
        for (int x = 0; x < a.Width(); ++x) {
            if (At(a, x, y) != At(b, x, y)) {
                return ::testing::AssertionFailure() << "first difference at " << x << ", " << y;
            }
        }
    }
    return ::testing::AssertionSuccess();
}

} // namespace pictorel::engine::test
