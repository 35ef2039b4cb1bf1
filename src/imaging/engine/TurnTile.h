// Rows and columns of a small square of pixels exchanged.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Pixel (x, y) of the result, at `to` + x pixels + y `toStep`, comes from `from` + x `fromStep` + y pixels.
struct TurnTile {
    const std::uint8_t* from;
    std::ptrdiff_t fromStep; // bytes, of either sign
    std::uint8_t* to;
    std::ptrdiff_t toStep;
    int width; // of the result
    int height;
    bool
        streams; // past the cache; `to` and `toStep` are then multiples of 16, and EndStreaming() must follow
};

namespace scalar {
void Transpose(const TurnTile& tile);
}
namespace simd { // the same with the best vectors that the processor has
void Transpose(const TurnTile& tile);
void EndStreaming(); // after the thread's last tile
} // namespace simd

} // namespace pictorel::engine
