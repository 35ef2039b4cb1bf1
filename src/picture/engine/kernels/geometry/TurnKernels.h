// Pixels that change places: rows and columns of a small square exchanged, rows turned round.
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
    bool streams; // past the cache; `to` and `toStep` are then multiples of 16, and EndStreaming must follow
    const std::uint8_t* ahead = nullptr; // where the next tile is read from, fetched meanwhile; or null
};

struct TurnKernels {
    // Rows and columns of a tile exchanged.
    void (*Transpose)(const TurnTile& tile);

    // `out`, a row of a PixelArray, becomes the `width` pixels at `in` from the last to the first.
    void (*MirrorRow)(const std::uint8_t* in, std::uint8_t* out, int width);

    // After the last tile of a thread that streams.
    void (*EndStreaming)();

    static const TurnKernels& Plain();
    static const TurnKernels& Best();
};

} // namespace pictorel::engine
