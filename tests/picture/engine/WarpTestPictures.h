// Small pictures for tests, and comparing them.
#pragma once

#include "picture/PixelArray.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <functional>

namespace pictorel::testing {

using Pixel = std::array<std::uint8_t, 4>; // blue, green, red, alpha

Pixel PixelAt(const PixelArray& picture, int x, int y);
void SetPixel(PixelArray& picture, int x, int y, Pixel pixel);

PixelArray Filled(int width, int height, Pixel pixel, bool hasAlpha = false);
PixelArray Drawn(int width, int height, const std::function<Pixel(int x, int y)>& pixelOf,
                 bool hasAlpha = false);

// Every pixel different from its neighbours; without alpha opaque, with alpha from clear to opaque.
PixelArray Speckled(int width, int height, bool hasAlpha = false);

// What photographs are made of: soft shapes, fine texture and hard edges.
PixelArray PhotoLike(int width, int height);

// Same size, flags, reduction, details and pixels.
::testing::AssertionResult Same(const PixelArray& a, const PixelArray& b);

// Largest difference of any component.
int LargestDifference(const PixelArray& a, const PixelArray& b);

// Structural similarity of the lumas (Wang et al. 2004), in 8 x 8 windows; 1 is equality.
double StructuralSimilarity(const PixelArray& a, const PixelArray& b);

double MeanOfComponent(const PixelArray& picture, int component);

} // namespace pictorel::testing
