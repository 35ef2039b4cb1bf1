// The colours of TIFF samples, see TiffColouring.h.
#include "picture/codecs/tiff/TiffColouring.h"

#include "picture/codecs/PixelSupport.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <limits>
#include <numeric>
#include <type_traits>

namespace pictorel::codecs {
namespace {

struct Kind {
    TiffColour colour;
    SampleLayout narrow;
    SampleLayout wide;
    std::array<std::uint16_t, 4> mask; // turned over in each 16-bit sample, its high byte in an 8-bit one
};
// In the order of TiffColour. CIE L*a*b* has signed a* and b*.
constexpr std::array<Kind, 6> kKinds{
    {{TiffColour::Grey, SampleLayout::Grey8, SampleLayout::Grey16, {}},
     {TiffColour::Rgb, SampleLayout::Bgra8, SampleLayout::Rgb16, {}},
     {TiffColour::Palette, SampleLayout::Rgb16, SampleLayout::Rgb16, {}},
     {TiffColour::Cmyk, SampleLayout::Cmyk8, SampleLayout::Cmyk16, {}},
     {TiffColour::Lab, SampleLayout::Lab8, SampleLayout::Lab16, {0, 0x8000, 0x8000, 0}},
     {TiffColour::IccLab, SampleLayout::Lab8, SampleLayout::Lab16, {}}}};

constexpr bool KindsStandInOrder() {
    for (std::size_t i = 0; i < kKinds.size(); ++i) {
        if (static_cast<std::size_t>(kKinds[i].colour) != i) {
            return false;
        }
    }
    return true;
}
static_assert(KindsStandInOrder());

const Kind& KindOf(const TiffLayout& layout) noexcept {
    return kKinds[static_cast<std::size_t>(layout.colour)];
}

std::uint8_t To8(std::uint8_t sample) noexcept {
    return sample;
}
std::uint8_t To8(std::uint16_t sample) noexcept {
    return static_cast<std::uint8_t>((sample * 255U + 32767U) / 65535U);
}

// The colour that was multiplied by alpha, out of the product.
template <class Sample>
Sample Unassociated(Sample colour, Sample alpha) noexcept {
    constexpr std::uint32_t kLargest = std::numeric_limits<Sample>::max();
    if (alpha == 0) {
        return colour;
    }
    return static_cast<Sample>(std::min(kLargest, (colour * kLargest + alpha / 2U) / alpha));
}

template <class Sample>
std::vector<Sample> UnassociatedRow(const Sample* samples, int step, int alpha, int colours, int pixels) {
    std::vector<Sample> row(samples, samples + static_cast<std::ptrdiff_t>(pixels) * step);
    for (std::size_t at = 0; at < row.size(); at += static_cast<std::size_t>(step)) {
        const Sample opacity = row[at + static_cast<std::size_t>(alpha)];
        for (std::size_t i = 0; i < static_cast<std::size_t>(colours); ++i) {
            row[at + i] = Unassociated(row[at + i], opacity);
        }
    }
    return row;
}

void PackBgra(const std::uint8_t* samples, int step, std::uint8_t* bgra, int pixels) noexcept {
    for (int x = 0; x < pixels; ++x, samples += step, bgra += PixelArray::kComponents) {
        bgra[0] = samples[2];
        bgra[1] = samples[1];
        bgra[2] = samples[0];
        bgra[3] = 255;
    }
}

// The colour samples alone, as a converter takes them.
template <class Sample>
std::vector<Sample> PackColours(const TiffLayout& layout, const Sample* samples, int step, int pixels) {
    const Kind& kind = KindOf(layout);
    std::array<Sample, 4> mask{};
    for (std::size_t i = 0; i < mask.size(); ++i) {
        const unsigned whole = layout.inverted ? 0xFFFFU : kind.mask[i];
        mask[i] = static_cast<Sample>(sizeof(Sample) == 1 ? whole >> 8 : whole);
    }
    const auto colours = static_cast<std::size_t>(layout.colours);
    std::vector<Sample> packed(static_cast<std::size_t>(pixels) * colours);
    for (std::size_t at = 0; at < packed.size(); at += colours, samples += step) {
        for (std::size_t i = 0; i < colours; ++i) {
            packed[at + i] = static_cast<Sample>(samples[i] ^ mask[i]);
        }
        if (layout.colour == TiffColour::IccLab && sizeof(Sample) == 2) {
            constexpr unsigned kIccWhite = 0xFF00; // L* of 100 in the 16-bit encoding of ICC version 2
            packed[at] = static_cast<Sample>(std::min(packed[at] * 65535U / kIccWhite, 65535U));
        }
    }
    return packed;
}

// Colour maps of 256 levels are found where 65536 are asked for.
bool HoldsBytes(const std::array<const std::uint16_t*, 3>& maps, std::size_t colours) {
    return std::all_of(maps.begin(), maps.end(), [colours](const std::uint16_t* map) {
        return std::all_of(map, map + colours, [](std::uint16_t level) { return level < 256; });
    });
}

} // namespace

TiffColouring::TiffColouring(const TiffLayout& layout, bool narrow, const TiffFile& tiff, ByteView icc)
    : layout_(layout), converter_(narrow ? KindOf(layout).narrow : KindOf(layout).wide, icc) {
    if (layout.colour == TiffColour::Palette) {
        BuildPalette(tiff, icc);
    } else if (layout.colour == TiffColour::Grey && narrow) {
        BuildGreys();
    }
}

void TiffColouring::BuildGreys() {
    constexpr int kLevels = 256;
    std::array<std::uint8_t, kLevels> levels{};
    std::iota(levels.begin(), levels.end(), std::uint8_t{0});
    if (layout_.inverted) {
        std::reverse(levels.begin(), levels.end());
    }
    table_.resize(kLevels);
    converter_.ConvertRow(levels.data(), reinterpret_cast<std::uint8_t*>(table_.data()), kLevels);
}

void TiffColouring::BuildPalette(const TiffFile& tiff, ByteView icc) {
    std::array<const std::uint16_t*, 3> maps{};
    const auto colours = std::size_t{1} << layout_.bits;
    if (TIFFGetField(tiff.Handle(), TIFFTAG_COLORMAP, &maps[0], &maps[1], &maps[2]) == 0) {
        Refuse("The TIFF file has no palette.");
    }
    const unsigned scale = HoldsBytes(maps, colours) ? 257 : 1;
    std::vector<std::uint16_t> rgb;
    rgb.reserve(colours * maps.size());
    for (std::size_t i = 0; i < colours; ++i) {
        for (const std::uint16_t* map : maps) {
            rgb.push_back(static_cast<std::uint16_t>(map[i] * scale));
        }
    }
    table_.resize(colours);
    ColourConverter(SampleLayout::Rgb16, icc)
        .ConvertRow(rgb.data(), reinterpret_cast<std::uint8_t*>(table_.data()), static_cast<int>(colours));
}

template <class Sample>
void TiffColouring::Colour(const Sample* samples, int step, int alpha, std::uint8_t* bgra, int pixels) const {
    std::vector<Sample> unassociated;
    if (layout_.alpha == TiffAlpha::Associated && layout_.colour != TiffColour::Palette) {
        unassociated = UnassociatedRow(samples, step, alpha, layout_.colours, pixels);
        samples = unassociated.data();
    }
    if (!table_.empty()) {
        for (int x = 0; x < pixels; ++x) {
            std::memcpy(bgra + std::ptrdiff_t{4} * x, &table_[samples[std::ptrdiff_t{x} * step]], 4);
        }
    } else if (std::is_same_v<Sample, std::uint8_t> && layout_.colour == TiffColour::Rgb) {
        PackBgra(reinterpret_cast<const std::uint8_t*>(samples), step, bgra, pixels);
        if (!converter_.IsIdentity()) {
            converter_.ConvertRow(bgra, bgra, pixels);
        }
    } else {
        converter_.ConvertRow(PackColours(layout_, samples, step, pixels).data(), bgra, pixels);
    }
    if (layout_.alpha != TiffAlpha::None) {
        for (int x = 0; x < pixels; ++x) {
            bgra[std::ptrdiff_t{4} * x + 3] = To8(samples[std::ptrdiff_t{x} * step + alpha]);
        }
    }
}

void TiffColouring::ColourRow(const std::uint8_t* samples, int step, int alpha, std::uint8_t* bgra,
                              int pixels) const {
    Colour(samples, step, alpha, bgra, pixels);
}

void TiffColouring::ColourRow(const std::uint16_t* samples, int step, int alpha, std::uint8_t* bgra,
                              int pixels) const {
    Colour(samples, step, alpha, bgra, pixels);
}

} // namespace pictorel::codecs
