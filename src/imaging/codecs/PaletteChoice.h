// The few colours that serve a picture best.
#pragma once

#include "imaging/PixelArray.h"

#include <array>
#include <cstdint>
#include <vector>

namespace pictorel::codecs {

using Bgr = std::array<std::uint8_t, 3>;

// Pixels less opaque than this are transparent where alpha is one bit, and count for no colour.
inline constexpr int kOpaqueFrom = 128;

// How often the colours of a picture occur, 64 levels a channel; each cell knows the mean of its pixels.
class ColourHistogram {
  public:
    static constexpr int kBits = 6;
    static constexpr std::size_t kCells = std::size_t{1} << (3 * kBits);

    explicit ColourHistogram(const PixelArray& picture);

    static std::size_t CellOf(int blue, int green, int red) noexcept {
        constexpr int kDrop = 8 - kBits;
        return static_cast<std::size_t>(blue >> kDrop << (2 * kBits) | green >> kDrop << kBits |
                                        red >> kDrop);
    }

    std::uint32_t Count(std::size_t cell) const noexcept { return cells_[cell].count; }

    // Blue, green, red 0..255: the mean of the pixels in the cell, its middle where there are none.
    std::array<float, 3> Mean(std::size_t cell) const noexcept;

  private:
    struct Cell {
        std::uint32_t count = 0;
        std::array<std::uint32_t, 3> sum{}; // of the bits below the cell's own
    };
    std::vector<Cell> cells_;
};

// A colour where distances are what the eye sees: OKLab (B. Ottosson, "A perceptual color space for image
// processing", 2020).
struct SeenColour {
    float lightness = 0;
    float greenRed = 0;
    float blueYellow = 0;
};
SeenColour See(const std::array<float, 3>& bgr) noexcept;

// Finds the nearest of a palette's colours.
class PaletteSearch {
  public:
    explicit PaletteSearch(const std::vector<SeenColour>& colours);
    int Nearest(const SeenColour& colour) const noexcept;

  private:
    std::vector<float> lightness_;
    std::vector<float> greenRed_;
    std::vector<float> blueYellow_;
};

// At most `count` colours: the histogram is cut into boxes, each time the one of largest squared error across
// its longest axis, and the boxes' means are then settled by k-means.
std::vector<Bgr> ChoosePalette(const ColourHistogram& histogram, int count);

} // namespace pictorel::codecs
