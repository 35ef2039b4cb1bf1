// Made pictures for the tests, and ways to look at them and to compare them.
#pragma once

#include "picture/PixelArray.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>

namespace pictorel::test {

using Pixel = std::array<std::uint8_t, 4>; // blue, green, red, alpha

struct Size {
    int width;
    int height;
};

Pixel At(const PixelArray& picture, int x, int y);
void Set(PixelArray& picture, int x, int y, Pixel pixel);

// A picture whose pixel at x, y is pixelAt(x, y).
PixelArray Draw(Size size, const std::function<Pixel(int x, int y)>& pixelAt, bool hasAlpha = false);

// The same pixel everywhere; the picture has alpha if the pixel is not opaque or if it is told to.
PixelArray Constant(Size size, Pixel pixel, bool hasAlpha = false);

enum class Alpha { None, Random };

// Every component is random, the extremes 0 and 255 and greys far more often than chance would have them.
PixelArray Random(Size size, Alpha alpha = Alpha::None, unsigned seed = 1);

// Every pixel different from its neighbours; without alpha opaque, with alpha from clear to opaque.
PixelArray Speckled(Size size, bool hasAlpha = false);

// What photographs are made of: soft shapes, fine texture and hard edges.
PixelArray PhotoLike(Size size);

// Same size and pixels; Same also asks for the same flags, reduction and details.
::testing::AssertionResult SamePixels(const PixelArray& a, const PixelArray& b);
::testing::AssertionResult Same(const PixelArray& a, const PixelArray& b);

// Largest difference of any component of two pictures of one size.
int LargestDifference(const PixelArray& a, const PixelArray& b);

// Structural similarity of the lumas (Wang et al. 2004), in 8 x 8 windows; 1 is equality.
double StructuralSimilarity(const PixelArray& a, const PixelArray& b);

double MeanOfComponent(const PixelArray& picture, int component);

} // namespace pictorel::test
