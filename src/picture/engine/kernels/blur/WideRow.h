// Rows of pixels in 16 bits a component: what blurs pass from stage to stage.
#pragma once

#include "picture/engine/kernels/base/LineAllocator.h"
#include "picture/engine/kernels/base/Sizes.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::engine {

// In 1/128 of a level, 0 to 255 * 128; colour premultiplied where the picture has alpha.
using Wide = std::uint16_t;
inline constexpr int kWideBits = 7;
inline constexpr int kWideUnit = 1 << kWideBits;

// Rows have room for whole vectors, and for vectors begun within them.
inline constexpr std::size_t kWideStep = 32;

// A wide row has two halves of this length: first the components 0 and 2 of all pixels, then the components 1
// and 3. Bytes are parted that way without a shuffle, and put together again.
inline constexpr std::size_t kWidesPerPixel = kComponents / 2; // in a half
constexpr std::size_t HalfLength(int width) {
    return (static_cast<std::size_t>(width) * 2 + kWideStep - 1) / kWideStep * kWideStep + 2 * kWideStep;
}
constexpr std::size_t WideLength(int width) {
    return 2 * HalfLength(width);
}

using WideRow = std::vector<Wide, LineAllocator<Wide>>;

} // namespace pictorel::engine
