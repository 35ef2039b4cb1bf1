// A picture brought down to a palette, see IndexedPicture.h.
#include "imaging/codecs/IndexedPicture.h"

#include "imaging/codecs/PixelSupport.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace pictorel::codecs {
namespace {

constexpr int kPaletteSize = 256;

bool IsTransparent(const std::uint8_t* pixel) noexcept {
    return pixel[3] < kOpaqueFrom;
}

std::size_t PixelCount(const PixelArray& picture) {
    return static_cast<std::size_t>(picture.Width()) * static_cast<std::size_t>(picture.Height());
}

// Numbers the colours as they come; a small open hash table.
class ColourNumbers {
  public:
    explicit ColourNumbers(int capacity) : capacity_(capacity) {}

    // The number of the colour, -1 where it would be one too many.
    int NumberOf(const std::uint8_t* pixel) {
        const Bgr colour{pixel[0], pixel[1], pixel[2]};
        const std::uint32_t key = colour[0] | colour[1] << 8 | colour[2] << 16;
        for (std::uint32_t slot = key * 0x9E3779B1U >> (32 - kSlotBits);; slot = (slot + 1) & (kSlots - 1)) {
            const int number = slots_[slot];
            if (number < 0) {
                return Add(slot, colour);
            }
            if (colours_[static_cast<std::size_t>(number)] == colour) {
                return number;
            }
        }
    }
    std::vector<Bgr> Colours() const { return colours_; }

  private:
    static constexpr int kSlotBits = 10; // four times what they ever hold
    static constexpr std::uint32_t kSlots = 1U << kSlotBits;

    int Add(std::uint32_t slot, const Bgr& colour) {
        if (static_cast<int>(colours_.size()) == capacity_) {
            return -1;
        }
        slots_[slot] = static_cast<std::int16_t>(colours_.size());
        colours_.push_back(colour);
        return slots_[slot];
    }

    int capacity_;
    std::vector<Bgr> colours_;
    std::vector<std::int16_t> slots_ = std::vector<std::int16_t>(kSlots, -1);
};

// The picture as it is, where its colours are few enough.
std::optional<IndexedPicture> MakeExact(const PixelArray& picture, bool hasTransparent) {
    IndexedPicture result;
    const int colours = hasTransparent ? kPaletteSize - 1 : kPaletteSize;
    ColourNumbers numbers(colours);
    std::vector<std::uint8_t>& indices = result.indices;
    indices.reserve(PixelCount(picture));
    for (int y = 0; y < picture.Height(); ++y) {
        const std::uint8_t* pixel = picture.Row(y);
        for (int x = 0; x < picture.Width(); ++x, pixel += PixelArray::kComponents) {
            const int number = IsTransparent(pixel) ? kPaletteSize - 1 : numbers.NumberOf(pixel);
            if (number < 0) {
                return std::nullopt;
            }
            indices.push_back(static_cast<std::uint8_t>(number));
        }
    }
    result.palette = numbers.Colours();
    if (hasTransparent) { // a place behind the colours, so that few colours need few bits
        result.transparentIndex = static_cast<int>(result.palette.size());
        std::replace(indices.begin(), indices.end(), static_cast<std::uint8_t>(kPaletteSize - 1),
                     static_cast<std::uint8_t>(result.transparentIndex));
        result.palette.push_back({0, 0, 0});
    }
    return result;
}

// Nearest palette colours, found once for each cell of the histogram's grid.
class NearestTable {
  public:
    NearestTable(const ColourHistogram& histogram, const std::vector<Bgr>& palette)
        : histogram_(histogram), search_(SeenPalette(palette)), table_(ColourHistogram::kCells, -1) {}

    int Nearest(int blue, int green, int red) {
        const std::size_t cell = ColourHistogram::CellOf(blue, green, red);
        if (table_[cell] < 0) {
            table_[cell] = static_cast<std::int16_t>(search_.Nearest(See(histogram_.Mean(cell))));
        }
        return table_[cell];
    }

  private:
    static std::vector<SeenColour> SeenPalette(const std::vector<Bgr>& palette) {
        std::vector<SeenColour> seen;
        seen.reserve(palette.size());
        for (const Bgr& c : palette) {
            seen.push_back(
                See({static_cast<float>(c[0]), static_cast<float>(c[1]), static_cast<float>(c[2])}));
        }
        return seen;
    }

    const ColourHistogram& histogram_;
    PaletteSearch search_;
    std::vector<std::int16_t> table_;
};

// Floyd-Steinberg error diffusion. Errors are sixteenths; a row's errors have a pixel to spare at either end.
class Diffusion {
  public:
    Diffusion(const ColourHistogram& histogram, IndexedPicture& result, int width)
        : nearest_(histogram, result.palette),
          result_(result),
          width_(width),
          here_(static_cast<std::size_t>(width) + 2),
          below_(here_.size()) {}

    void DoRow(const std::uint8_t* row, std::uint8_t* indices, bool leftwards) {
        const int step = leftwards ? -1 : 1;
        const std::ptrdiff_t begin = leftwards ? width_ - 1 : 0;
        for (std::ptrdiff_t i = 0, x = begin; i < width_; ++i, x += step) {
            const std::uint8_t* const pixel = row + x * PixelArray::kComponents;
            if (IsTransparent(pixel)) {
                indices[x] = static_cast<std::uint8_t>(result_.transparentIndex);
            } else {
                indices[x] = DoPixel(pixel, &here_[static_cast<std::size_t>(x + 1)],
                                     &below_[static_cast<std::size_t>(x + 1)], step);
            }
        }
        here_.swap(below_);
        std::fill(below_.begin(), below_.end(), Error{});
    }

  private:
    using Error = std::array<int, 3>;

    std::uint8_t DoPixel(const std::uint8_t* pixel, Error* here, Error* below, int step) {
        std::array<int, 3> wanted{};
        for (std::size_t k = 0; k < 3; ++k) {
            wanted[k] = std::clamp(pixel[k] + ((*here)[k] + 8) / 16, 0, 255);
        }
        const int index = nearest_.Nearest(wanted[0], wanted[1], wanted[2]);
        const Bgr& given = result_.palette[static_cast<std::size_t>(index)];
        for (std::size_t k = 0; k < 3; ++k) {
            const int error = wanted[k] - given[k];
            here[step][k] += 7 * error;
            below[-step][k] += 3 * error;
            below[0][k] += 5 * error;
            below[step][k] += error;
        }
        return static_cast<std::uint8_t>(index);
    }

    NearestTable nearest_;
    IndexedPicture& result_;
    int width_;
    std::vector<Error> here_;
    std::vector<Error> below_;
};

IndexedPicture MakeDiffused(const PixelArray& picture, bool hasTransparent) {
    const ColourHistogram histogram(picture);
    IndexedPicture result;
    result.palette = ChoosePalette(histogram, hasTransparent ? kPaletteSize - 1 : kPaletteSize);
    result.transparentIndex = hasTransparent ? static_cast<int>(result.palette.size()) : -1;
    result.indices.resize(PixelCount(picture));
    Diffusion diffusion(histogram, result, picture.Width());
    for (int y = 0; y < picture.Height(); ++y) {
        diffusion.DoRow(
            picture.Row(y),
            result.indices.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.Width()),
            y % 2 != 0);
    }
    if (hasTransparent) {
        result.palette.push_back({0, 0, 0});
    }
    return result;
}

} // namespace

IndexedPicture MakeIndexed(const PixelArray& picture) {
    const bool hasTransparent =
        picture.HasAlpha() && FindAlphaRange(picture, 0, picture.Height()).lowest < kOpaqueFrom;
    if (auto exact = MakeExact(picture, hasTransparent)) {
        return std::move(*exact);
    }
    return MakeDiffused(picture, hasTransparent);
}

} // namespace pictorel::codecs
