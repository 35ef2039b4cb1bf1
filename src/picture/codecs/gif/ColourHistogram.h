// How often the colours of a picture occur.
#pragma once

#include "picture/PixelArray.h"

#include <array>
#include <cstdint>
#include <vector>

namespace pictorel::codecs {

// Pixels less opaque than this are transparent where alpha is one bit, and count for no colour.
inline constexpr int kOpaqueFrom = 128;

// Cells of 64 levels a channel; each knows the mean of its pixels.
class ColourHistogram {
  public:
    static constexpr int kBits = 6;
    static constexpr std::size_t kCells = std::size_t{1} << (3 * kBits);

    // Counts on all cores.
    explicit ColourHistogram(const PixelArray& picture);

    std::uint32_t Count(std::size_t cell) const noexcept { return cells_[cell].count; }

    // Blue, green, red 0..255: the mean of the pixels in a cell that has any.
    std::array<float, 3> Mean(std::size_t cell) const noexcept;

  private:
    struct Cell {
        std::uint32_t count = 0;
        std::array<std::uint32_t, 3> sum{}; // of the bits below the cell's own
    };
    using Cells = std::vector<Cell>;

    static void CountRow(const std::uint8_t* pixel, int width, Cells& cells);

    Cells cells_;
};

} // namespace pictorel::codecs
