// A picture brought down to a palette, see IndexedPicture.h.
#include "picture/codecs/gif/IndexedPicture.h"

#include "picture/codecs/PixelSupport.h"
#include "picture/codecs/gif/ErrorDiffusion.h"

#include <algorithm>
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

IndexedPicture MakeDiffused(const PixelArray& picture, bool hasTransparent) {
    IndexedPicture result;
    result.palette =
        ChoosePalette(ColourHistogram(picture), hasTransparent ? kPaletteSize - 1 : kPaletteSize);
    result.transparentIndex = hasTransparent ? static_cast<int>(result.palette.size()) : -1;
    result.indices = DiffuseErrors(picture, result.palette, result.transparentIndex);
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
