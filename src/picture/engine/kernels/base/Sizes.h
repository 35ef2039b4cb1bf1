// Sizes that every kernel counts with.
#pragma once

#include "picture/PixelArray.h"

#include <cstddef>

namespace pictorel::engine {

inline constexpr int kComponents = PixelArray::kComponents; // of a pixel: blue, green, red, alpha
inline constexpr std::ptrdiff_t kPixelBytes = kComponents;  // the same, to reckon with addresses

inline constexpr std::size_t kCacheLine = 64; // bytes, as many as the longest vector has
inline constexpr int kVectorPixels = 16;      // in the longest vector

} // namespace pictorel::engine
