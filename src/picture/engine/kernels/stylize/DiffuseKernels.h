// Where the pixels of a row are taken from when they change places at random.
#pragma once

#include <cstdint>

namespace pictorel::engine {

// The picture: its last column and row, and from row to row `rowPixels`. Chance decides which pixels are
// moved: those whose first random number is at most `lastMoved`. They come from the square of `radius`.
struct Scatter {
    int lastColumn;
    int lastRow;
    int rowPixels;
    int radius;
    std::uint32_t lastMoved;
    int left; // of its first pixel where the random numbers are counted from
    int top;
};

struct DiffuseKernels {
    // For each column of the row `y`, which pixel of the picture it shows, counted row by row. `sources` has
    // room for a multiple of 16.
    void (*ChooseSources)(const Scatter& scatter, int y, std::int32_t* sources);

    static const DiffuseKernels& Plain();
    static const DiffuseKernels& Best();
};

} // namespace pictorel::engine
