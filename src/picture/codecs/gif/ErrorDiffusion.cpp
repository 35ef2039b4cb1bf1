// Error diffusion, see ErrorDiffusion.h.
#include "picture/codecs/gif/ErrorDiffusion.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/gif/NearestSearch.h"

#include <algorithm>
#include <atomic>

namespace pictorel::codecs {
namespace {

constexpr int kUnit = 16; // errors are counted in sixteenths

// The nearest palette colours, found once for each cell of a grid of 128 levels a channel. Several threads
// may ask at once: whichever finds a cell empty finds the same colour for it.
class NearestTable {
  public:
    explicit NearestTable(const std::vector<Bgr>& palette) : cells_(std::size_t{1} << (3 * kBits)) {
        for (const Bgr& colour : palette) {
            search_.Add({2 * colour[0], 2 * colour[1], 2 * colour[2]});
        }
    }

    std::uint8_t Nearest(int blue, int green, int red) {
        constexpr int kDrop = 8 - kBits;
        auto& cell = cells_[static_cast<std::size_t>(blue >> kDrop << (2 * kBits) | green >> kDrop << kBits |
                                                     red >> kDrop)];
        std::uint16_t found = cell.load(std::memory_order_relaxed);
        if (found == kEmpty) {
            const auto middle = [](int value) { return (value >> kDrop << kDrop) * 2 + (1 << kDrop) - 1; };
            found =
                static_cast<std::uint16_t>(search_.Nearest({middle(blue), middle(green), middle(red)}) + 1);
            cell.store(found, std::memory_order_relaxed);
        }
        return static_cast<std::uint8_t>(found - 1);
    }

  private:
    static constexpr int kBits = 7;
    static constexpr std::uint16_t kEmpty = 0; // else the number of the colour and 1

    NearestSearch<3> search_; // in half levels
    std::vector<std::atomic<std::uint16_t>> cells_;
};

// The rows of one band, in their order.
class Diffusion {
  public:
    Diffusion(NearestTable& nearest, const std::vector<Bgr>& palette, int transparentIndex, int width)
        : nearest_(nearest),
          palette_(palette),
          transparentIndex_(static_cast<std::uint8_t>(transparentIndex)),
          width_(width),
          here_(static_cast<std::size_t>(width) + 2),
          below_(here_.size()) {}

    void DoRow(const std::uint8_t* row, std::uint8_t* indices, bool leftwards) {
        const int step = leftwards ? -1 : 1;
        const std::ptrdiff_t begin = leftwards ? width_ - 1 : 0;
        for (std::ptrdiff_t i = 0, x = begin; i < width_; ++i, x += step) {
            const std::uint8_t* const pixel = row + x * PixelArray::kComponents;
            const auto at = static_cast<std::size_t>(x + 1);
            indices[x] =
                pixel[3] < kOpaqueFrom ? transparentIndex_ : DoPixel(pixel, &here_[at], &below_[at], step);
        }
        here_.swap(below_);
        std::fill(below_.begin(), below_.end(), Error{});
    }

  private:
    using Error = std::array<int, 3>; // a row's errors have a pixel to spare at either end

    std::uint8_t DoPixel(const std::uint8_t* pixel, Error* here, Error* below, int step) {
        // More than that comes only of colours that no mixture of the palette makes, and would run as streaks
        // through what follows.
        constexpr int kMostError = 20 * kUnit;
        std::array<int, 3> wanted{};
        for (std::size_t k = 0; k < 3; ++k) {
            const int error = std::clamp((*here)[k], -kMostError, kMostError);
            wanted[k] = std::clamp(pixel[k] * kUnit + error, 0, 255 * kUnit);
        }
        const std::uint8_t index =
            nearest_.Nearest((wanted[0] + kUnit / 2) / kUnit, (wanted[1] + kUnit / 2) / kUnit,
                             (wanted[2] + kUnit / 2) / kUnit);
        const Bgr& given = palette_[index];
        for (std::size_t k = 0; k < 3; ++k) {
            const int error = wanted[k] - given[k] * kUnit;
            const int ahead = error / 2;
            const int behind = error / 4;
            here[step][k] += ahead;
            below[-step][k] += behind;
            below[0][k] += error - ahead - behind;
        }
        return index;
    }

    NearestTable& nearest_;
    const std::vector<Bgr>& palette_;
    std::uint8_t transparentIndex_;
    int width_;
    std::vector<Error> here_;
    std::vector<Error> below_;
};

} // namespace

std::vector<std::uint8_t> DiffuseErrors(const PixelArray& picture, const std::vector<Bgr>& palette,
                                        int transparentIndex) {
    constexpr int kBandRows = 256;
    constexpr int kRunIn =
        16; // rows above a band, so that it begins with the errors it would have had, nearly
    const auto width = static_cast<std::size_t>(picture.Width());
    NearestTable nearest(palette);
    std::vector<std::uint8_t> indices(width * static_cast<std::size_t>(picture.Height()));
    const auto doBand = [&](int firstRow) {
        Diffusion diffusion(nearest, palette, transparentIndex, picture.Width());
        std::vector<std::uint8_t> unused(width);
        for (int y = std::max(firstRow - kRunIn, 0); y < firstRow; ++y) {
            diffusion.DoRow(picture.Row(y), unused.data(), y % 2 != 0);
        }
        for (int y = firstRow; y < std::min(firstRow + kBandRows, picture.Height()); ++y) {
            diffusion.DoRow(picture.Row(y), indices.data() + static_cast<std::size_t>(y) * width, y % 2 != 0);
        }
    };
    const int bands = (picture.Height() + kBandRows - 1) / kBandRows;
    ForEachBand(bands, picture.RowBytes() * kBandRows, [&](int first, int end) {
        for (int band = first; band < end; ++band) {
            doBand(band * kBandRows);
        }
    });
    return indices;
}

} // namespace pictorel::codecs
