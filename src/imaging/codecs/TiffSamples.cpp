// From rows of TIFF samples to B, G, R, A, see TiffSamples.h.
#include "imaging/codecs/TiffSamples.h"

#include "imaging/codecs/PixelSupport.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace pictorel::codecs {
namespace {

// Samples of any number of bits below 32, packed with the highest bit first.
std::uint32_t PackedBits(const std::uint8_t* row, std::size_t index, int bits) noexcept {
    std::size_t bit = index * static_cast<std::size_t>(bits);
    std::uint32_t value = 0;
    for (int left = bits; left > 0;) {
        const int offset = static_cast<int>(bit % 8);
        const int taken = std::min(left, 8 - offset);
        const unsigned part = row[bit / 8] >> (8 - offset - taken) & ((1U << taken) - 1);
        value = value << taken | part;
        bit += static_cast<std::size_t>(taken);
        left -= taken;
    }
    return value;
}

// Signed samples reach from the blackest to the whitest like unsigned ones, half the range lower.
std::uint16_t FetchPacked(const std::uint8_t* row, std::size_t index, const TiffLayout& layout) {
    const std::uint64_t largest = (std::uint64_t{1} << layout.bits) - 1;
    std::uint64_t value = PackedBits(row, index, layout.bits);
    if (layout.sampleFormat == SAMPLEFORMAT_INT) {
        value ^= std::uint64_t{1} << (layout.bits - 1);
    }
    const std::uint64_t white = layout.HasWideSamples() ? 65535 : 255;
    return static_cast<std::uint16_t>((value * white + largest / 2) / largest);
}

// Whole bytes, in the order of this machine.
template <class Number, bool isSigned>
std::uint16_t FetchWhole(const std::uint8_t* row, std::size_t index, const TiffLayout& /*layout*/) {
    constexpr Number kTop = Number{1} << (std::numeric_limits<Number>::digits - 1);
    constexpr Number kStep = sizeof(Number) <= 2 ? Number{1} : std::numeric_limits<Number>::max() / 65535;
    Number value = 0;
    std::memcpy(&value, row + index * sizeof(Number), sizeof(Number));
    value = static_cast<Number>(isSigned ? value ^ kTop : value);
    return static_cast<std::uint16_t>(value / kStep + (value % kStep > kStep / 2 ? 1 : 0));
}

// Three whole bytes, which libtiff brings into the order of this machine too.
std::uint16_t Fetch24(const std::uint8_t* row, std::size_t index, const TiffLayout& layout) {
    constexpr int kDrop = std::endian::native == std::endian::little ? 0 : 8;
    std::uint32_t value = 0;
    std::memcpy(&value, row + index * 3, 3);
    value >>= kDrop;
    if (layout.sampleFormat == SAMPLEFORMAT_INT) {
        value ^= 1U << 23;
    }
    return static_cast<std::uint16_t>((std::uint64_t{value} * 65535 + (1U << 23)) / 0xFFFFFF);
}

std::uint16_t ScaledFloat(double value, const TiffLayout& layout) {
    const double share = (value - layout.floatMinimum) / (layout.floatMaximum - layout.floatMinimum);
    return share > 0 ? static_cast<std::uint16_t>(std::lround(std::min(share, 1.0) * 65535))
                     : std::uint16_t{0};
}

template <class Number>
std::uint16_t FetchFloat(const std::uint8_t* row, std::size_t index, const TiffLayout& layout) {
    Number value = 0;
    std::memcpy(&value, row + index * sizeof(Number), sizeof(Number));
    return ScaledFloat(static_cast<double>(value), layout);
}

std::uint16_t FetchHalf(const std::uint8_t* row, std::size_t index, const TiffLayout& layout) {
    constexpr int kFractionBits = 10; // IEEE 754 binary16
    constexpr int kExponentBias = 15;
    std::uint16_t half = 0;
    std::memcpy(&half, row + index * sizeof half, sizeof half);
    const int exponent = half >> kFractionBits & 31;
    const int fraction = half & 1023;
    const double size = exponent == 0 ? std::ldexp(fraction, 1 - kExponentBias - kFractionBits)
                                      : std::ldexp(fraction + 1024, exponent - kExponentBias - kFractionBits);
    return ScaledFloat((half & 0x8000) != 0 ? -size : size, layout);
}

struct FetchRow {
    int bits;
    int format;
    TiffRowConverter::Fetch fetch;
};
constexpr FetchRow kFetches[] = {
    {8, SAMPLEFORMAT_UINT, FetchWhole<std::uint8_t, false>},
    {8, SAMPLEFORMAT_INT, FetchWhole<std::uint8_t, true>},
    {16, SAMPLEFORMAT_UINT, FetchWhole<std::uint16_t, false>},
    {16, SAMPLEFORMAT_INT, FetchWhole<std::uint16_t, true>},
    {24, SAMPLEFORMAT_UINT, Fetch24},
    {24, SAMPLEFORMAT_INT, Fetch24},
    {32, SAMPLEFORMAT_UINT, FetchWhole<std::uint32_t, false>},
    {32, SAMPLEFORMAT_INT, FetchWhole<std::uint32_t, true>},
    {64, SAMPLEFORMAT_UINT, FetchWhole<std::uint64_t, false>},
    {64, SAMPLEFORMAT_INT, FetchWhole<std::uint64_t, true>},
    {16, SAMPLEFORMAT_IEEEFP, FetchHalf},
    {32, SAMPLEFORMAT_IEEEFP, FetchFloat<float>},
    {64, SAMPLEFORMAT_IEEEFP, FetchFloat<double>},
};

TiffRowConverter::Fetch ChooseFetch(const TiffLayout& layout) {
    const int format = layout.sampleFormat == SAMPLEFORMAT_VOID ? SAMPLEFORMAT_UINT : layout.sampleFormat;
    // The L*a*b* kinds have signed samples whatever the format tag says.
    const int wanted =
        layout.colour == TiffColour::Lab && format == SAMPLEFORMAT_INT ? SAMPLEFORMAT_UINT : format;
    for (const FetchRow& row : kFetches) {
        if (row.bits == layout.bits && row.format == wanted) {
            return row.fetch;
        }
    }
    if (layout.bits >= 32 || (wanted != SAMPLEFORMAT_UINT && wanted != SAMPLEFORMAT_INT)) {
        Refuse("The TIFF file has a kind of samples that this editor cannot read.");
    }
    return FetchPacked;
}

SampleLayout LayoutOf(const TiffLayout& layout) {
    const bool isWide = layout.HasWideSamples();
    switch (layout.colour) {
        case TiffColour::Rgb:
            return isWide ? SampleLayout::Rgba16 : SampleLayout::Bgra8;
        case TiffColour::Cmyk:
            return isWide ? SampleLayout::Cmyk16 : SampleLayout::Cmyk8;
        case TiffColour::Lab:
            return isWide ? SampleLayout::Lab16 : SampleLayout::Lab8;
        default:
            return isWide ? SampleLayout::Grey16 : SampleLayout::Grey8;
    }
}

// Colour that was multiplied by its alpha, divided by it again.
template <class Number>
void DivideByAlpha(Number* samples, int step, int count, const Number* alpha, int alphaStep, int pixels) {
    for (int x = 0; x < pixels; ++x, samples += step, alpha += alphaStep) {
        const std::uint32_t a = *alpha;
        for (int i = 0; i < count && a != 0; ++i) {
            const std::uint32_t whole = std::numeric_limits<Number>::max();
            const std::uint64_t value = (std::uint64_t{samples[i]} * whole + a / 2) / a;
            samples[i] = static_cast<Number>(std::min<std::uint64_t>(value, whole));
        }
    }
}

} // namespace

TiffRowConverter::TiffRowConverter(const TiffLayout& layout)
    : layout_(layout), fetch_(ChooseFetch(layout)), converter_(LayoutOf(layout), layout.icc) {}

void TiffRowConverter::ConvertRow(std::span<const std::uint8_t* const> planes, std::uint8_t* bgra,
                                  int pixels) const {
    if (layout_.HasWideSamples()) {
        Convert<std::uint16_t>(planes, bgra, pixels);
    } else {
        Convert<std::uint8_t>(planes, bgra, pixels);
    }
}

template <class Number>
void TiffRowConverter::Gather(std::span<const std::uint8_t* const> planes, int sample, Number* out, int step,
                              int pixels) const {
    const auto at = static_cast<std::size_t>(sample);
    const std::uint8_t* const row = layout_.isPlanar ? planes[at] : planes[0];
    const std::size_t stride = layout_.isPlanar ? 1 : static_cast<std::size_t>(layout_.samples);
    std::size_t index = layout_.isPlanar ? 0 : at;
    if (sizeof(Number) == 1 && layout_.bits == 8 && layout_.sampleFormat == SAMPLEFORMAT_UINT) {
        for (int x = 0; x < pixels; ++x, index += stride, out += step) { // by far the most common
            *out = row[index];
        }
        return;
    }
    for (int x = 0; x < pixels; ++x, index += stride, out += step) {
        *out = static_cast<Number>(fetch_(row, index, layout_));
    }
}

void TiffRowConverter::LookUp(const std::uint8_t* row, std::uint8_t* bgra, int pixels) const {
    const std::size_t stride = layout_.isPlanar ? 1 : static_cast<std::size_t>(layout_.samples);
    for (int x = 0; x < pixels; ++x, bgra += PixelArray::kComponents) {
        const std::size_t index = static_cast<std::size_t>(x) * stride;
        std::uint16_t entry = 0;
        if (layout_.bits == 16) {
            std::memcpy(&entry, row + index * sizeof entry, sizeof entry);
        } else {
            entry = static_cast<std::uint16_t>(PackedBits(row, index, layout_.bits));
        }
        std::memcpy(bgra, layout_.palette[entry].data(), PixelArray::kComponents);
    }
}

template <class Number>
void TiffRowConverter::Convert(std::span<const std::uint8_t* const> planes, std::uint8_t* bgra,
                               int pixels) const {
    constexpr Number kWhole = std::numeric_limits<Number>::max();
    constexpr Number kTopBit = Number{1} << (std::numeric_limits<Number>::digits - 1);
    const auto count = static_cast<std::size_t>(pixels);
    std::vector<Number> alpha;
    if (layout_.alphaSample >= 0) {
        alpha.resize(count);
        Gather(planes, layout_.alphaSample, alpha.data(), 1, pixels);
    }
    if (layout_.colour == TiffColour::Palette) {
        LookUp(planes[0], bgra, pixels);
    } else {
        const bool isRgb = layout_.colour == TiffColour::Rgb;
        const int step = isRgb ? 4 : layout_.colourSamples;
        std::vector<Number> samples(count * static_cast<std::size_t>(step), kWhole);
        for (int i = 0; i < layout_.colourSamples; ++i) {
            const int place = isRgb && sizeof(Number) == 1 ? 2 - i : i; // 8-bit ones go as B, G, R, A
            Gather(planes, i, samples.data() + place, step, pixels);
        }
        if (layout_.isInverted) {
            std::for_each(samples.begin(), samples.end(),
                          [](Number& s) { s = static_cast<Number>(kWhole - s); });
        }
        for (std::size_t i = 0; layout_.hasSignedAb && i < samples.size(); ++i) {
            samples[i] = static_cast<Number>(i % 3 == 0 ? samples[i] : samples[i] ^ kTopBit);
        }
        if (layout_.isPremultiplied) {
            DivideByAlpha(samples.data(), step, layout_.colourSamples, alpha.data(), 1, pixels);
        }
        converter_.ConvertRow(samples.data(), bgra, pixels);
    }
    for (std::size_t x = 0; x < alpha.size(); ++x) {
        bgra[4 * x + 3] = static_cast<std::uint8_t>((alpha[x] * 255U + kWhole / 2U) / kWhole);
    }
}

} // namespace pictorel::codecs
