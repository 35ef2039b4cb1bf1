// Unpacks TIFF samples, see TiffSamples.h. Those of 16, 24, 32 and 64 bits come from the library in the byte
// order of the machine, all others as a stream of bits with the highest first.
#include "picture/codecs/tiff/TiffSamples.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

namespace pictorel::codecs {
namespace {

class BitReader {
  public:
    explicit BitReader(const std::uint8_t* bytes) : at_(bytes) {}

    std::uint64_t Next(int bits) {
        std::uint64_t value = 0;
        while (bits > 0) {
            if (left_ == 0) {
                current_ = *at_++;
                left_ = 8;
            }
            const int taken = std::min(bits, left_);
            left_ -= taken;
            bits -= taken;
            value = value << taken | (static_cast<unsigned>(current_ >> left_) & ((1U << taken) - 1));
        }
        return value;
    }

  private:
    const std::uint8_t* at_;
    unsigned current_ = 0;
    int left_ = 0;
};

std::uint16_t To16(std::uint64_t value, int bits) noexcept {
    if (bits >= 16) {
        return static_cast<std::uint16_t>(value >> (bits - 16));
    }
    const std::uint64_t largest = (std::uint64_t{1} << bits) - 1;
    return static_cast<std::uint16_t>((value * 65535 + largest / 2) / largest);
}

std::uint16_t To16(double value, const TiffLayout& layout) noexcept {
    const double part = (value - layout.lowest) / (layout.highest - layout.lowest);
    if (!(part > 0)) { // nor is what is no number
        return 0;
    }
    return part >= 1 ? std::uint16_t{65535} : static_cast<std::uint16_t>(std::lround(part * 65535));
}

// A floating-point number of fewer bits than the machine's own, IEEE 754 in all but its widths.
double ShortFloat(std::uint32_t bits, int exponentBits, int fractionBits) noexcept {
    const std::uint32_t fraction = bits & ((1U << fractionBits) - 1);
    const auto exponent = static_cast<int>(bits >> fractionBits & ((1U << exponentBits) - 1));
    const bool negative = (bits >> (fractionBits + exponentBits) & 1U) != 0;
    const int bias = (1 << (exponentBits - 1)) - 1;
    double value = 0;
    if (exponent == (1 << exponentBits) - 1) {
        value = fraction == 0 ? HUGE_VAL : std::nan("");
    } else if (exponent == 0) {
        value = std::ldexp(fraction, 1 - bias - fractionBits);
    } else {
        value = std::ldexp(fraction | 1U << fractionBits, exponent - bias - fractionBits);
    }
    return negative ? -value : value;
}

template <class Value>
Value Load(const std::uint8_t* at) noexcept {
    Value value;
    std::memcpy(&value, at, sizeof value);
    return value;
}

std::uint32_t Load24(const std::uint8_t* at) noexcept {
    if constexpr (std::endian::native == std::endian::little) {
        return at[0] | at[1] << 8 | std::uint32_t{at[2]} << 16;
    } else {
        return std::uint32_t{at[0]} << 16 | at[1] << 8 | at[2];
    }
}

std::uint64_t LoadInteger(const std::uint8_t* at, int bytes) noexcept {
    switch (bytes) {
        case 2:
            return Load<std::uint16_t>(at);
        case 3:
            return Load24(at);
        case 4:
            return Load<std::uint32_t>(at);
        default:
            return Load<std::uint64_t>(at);
    }
}

double LoadFloat(const std::uint8_t* at, int bytes) noexcept {
    switch (bytes) {
        case 2:
            return ShortFloat(Load<std::uint16_t>(at), 5, 10);
        case 3:
            return ShortFloat(Load24(at), 7, 16);
        case 4:
            return static_cast<double>(Load<float>(at));
        default:
            return Load<double>(at);
    }
}

// What the samples of a whole number of bytes look like decides the reader.
void ReadWords(const TiffLayout& /*layout*/, const std::uint8_t* row, std::uint16_t* out, int count,
               int step) {
    for (int i = 0; i < count; ++i, row += 2, out += step) {
        *out = Load<std::uint16_t>(row);
    }
}

void ReadIntegers(const TiffLayout& layout, const std::uint8_t* row, std::uint16_t* out, int count,
                  int step) {
    const int bytes = layout.bits / 8;
    for (int i = 0; i < count; ++i, row += bytes, out += step) {
        *out = To16(LoadInteger(row, bytes), layout.bits);
    }
}

void ReadFloats(const TiffLayout& layout, const std::uint8_t* row, std::uint16_t* out, int count, int step) {
    const int bytes = layout.bits / 8;
    for (int i = 0; i < count; ++i, row += bytes, out += step) {
        *out = To16(LoadFloat(row, bytes), layout);
    }
}

void ReadBits(const TiffLayout& layout, const std::uint8_t* row, std::uint16_t* out, int count, int step) {
    BitReader bits(row);
    const bool index = layout.colour == TiffColour::Palette;
    for (int i = 0; i < count; ++i, out += step) {
        const std::uint64_t value = bits.Next(layout.bits);
        *out = index ? static_cast<std::uint16_t>(value) : To16(value, layout.bits);
    }
}

} // namespace

TiffSamples::Reader TiffSamples::ReaderFor(const TiffLayout& layout) {
    const bool whole = layout.bits == 16 || layout.bits == 24 || layout.bits == 32 || layout.bits == 64;
    if (!whole) {
        return ReadBits;
    }
    if (layout.floats) {
        return ReadFloats;
    }
    return layout.bits == 16 ? ReadWords : ReadIntegers;
}

TiffSamples::TiffSamples(const TiffLayout& layout)
    : layout_(layout), narrow_(layout.bits <= 8), reader_(ReaderFor(layout)) {}

void TiffSamples::Unpack(const std::uint8_t* row, std::uint8_t* out, int count, int step) const {
    if (layout_.bits == 8) {
        for (int i = 0; i < count; ++i, out += step) {
            *out = row[i];
        }
        return;
    }
    std::array<std::uint8_t, 128> levels{}; // of a sample with fewer than 8 bits
    const unsigned largest = (1U << layout_.bits) - 1;
    for (unsigned value = 0; value <= largest; ++value) {
        levels[value] = static_cast<std::uint8_t>(
            layout_.colour == TiffColour::Palette ? value : (value * 255 + largest / 2) / largest);
    }
    BitReader bits(row);
    for (int i = 0; i < count; ++i, out += step) {
        *out = levels[bits.Next(layout_.bits)];
    }
}

void TiffSamples::Unpack(const std::uint8_t* row, std::uint16_t* out, int count, int step) const {
    reader_(layout_, row, out, count, step);
}

} // namespace pictorel::codecs
