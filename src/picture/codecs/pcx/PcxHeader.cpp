// The header and the palettes of a PCX file, see PcxHeader.h.
#include "picture/codecs/pcx/PcxHeader.h"

#include "picture/codecs/ByteReader.h"
#include "picture/codecs/PixelSupport.h"

#include <algorithm>

namespace pictorel::codecs {
namespace {

constexpr std::uint8_t kManufacturer = 10;
constexpr std::size_t kPaletteAt = 16; // 16 colours of red, green, blue
constexpr std::size_t kPaletteBytes = 48;
constexpr std::uint8_t kPaletteMarker = 12; // before the 256 colours at the end
constexpr std::size_t kLongPaletteBytes = 768;
constexpr std::int64_t kLongestRun = 63;    // bytes that two bytes stand for
constexpr std::int64_t kMostTruncated = 64; // a file that holds less than this fraction is no picture
constexpr int kVersionWithoutPalette = 3;

using Colour = std::array<std::uint8_t, 3>; // red, green, blue

// The sixteen colours of CGA and EGA in their order.
constexpr std::array<Colour, 16> kDisplayColours{{
    {0, 0, 0},
    {0, 0, 170},
    {0, 170, 0},
    {0, 170, 170},
    {170, 0, 0},
    {170, 0, 170},
    {170, 85, 0},
    {170, 170, 170},
    {85, 85, 85},
    {85, 85, 255},
    {85, 255, 85},
    {85, 255, 255},
    {255, 85, 85},
    {255, 85, 255},
    {255, 255, 85},
    {255, 255, 255},
}};

// A CGA picture shows a background colour and three colours of one of two sets, dim or bright: the first
// three numbers are display colours of the dim sets; the bright ones are 8 further on.
constexpr int kCgaSets[2][3] = {{2, 4, 6}, {3, 5, 7}};

std::array<std::uint8_t, 4> Bgra(const Colour& colour) {
    return {colour[2], colour[1], colour[0], 255};
}

struct Depth {
    int bits;
    int planes;
};
constexpr Depth kDepths[] = {{1, 1}, {1, 2}, {1, 3}, {1, 4}, {2, 1}, {2, 2},
                             {2, 4}, {4, 1}, {4, 2}, {8, 1}, {8, 3}, {8, 4}};

// Bytes 16 and 19 choose among the colours of CGA; the rest of the four entries is 0 then.
bool IsCgaPalette(ByteView palette, const PcxHeader& header) {
    if (header.bits != 2 || header.planes != 1) {
        return false;
    }
    for (std::size_t i = 0; i < 12; ++i) {
        if (i != 0 && i != 3 && ByteAt(palette, i) != 0) {
            return false;
        }
    }
    return true;
}

PcxPalette MakeCgaPalette(ByteView palette) {
    const unsigned background = ByteAt(palette, 0) >> 4U;
    const std::uint8_t choice = ByteAt(palette, 3);
    const auto& set = kCgaSets[(choice & 0x40) != 0 ? 1 : 0];
    const std::size_t bright = (choice & 0x20) != 0 ? 8 : 0;
    PcxPalette result{};
    result[0] = Bgra(kDisplayColours[background]);
    for (std::size_t i = 0; i < 3; ++i) {
        result[i + 1] = Bgra(kDisplayColours[static_cast<std::size_t>(set[i]) + bright]);
    }
    return result;
}

} // namespace

bool IsPcxHeader(ByteView file) noexcept {
    const int version = ByteAt(file, 1);
    const int bits = ByteAt(file, 3);
    const int planes = ByteAt(file, 65);
    const bool isDepth = std::any_of(std::begin(kDepths), std::end(kDepths), [&](const Depth& depth) {
        return depth.bits == bits && depth.planes == planes;
    });
    return file.size() > kPcxHeaderBytes && file[0] == kManufacturer && version <= 5 && version != 1 &&
           file[2] <= 1 && isDepth && LittleEndian16(file, 4) <= LittleEndian16(file, 8) &&
           LittleEndian16(file, 6) <= LittleEndian16(file, 10);
}

PcxHeader ReadPcxHeader(ByteView file) {
    if (!IsPcxHeader(file)) {
        Refuse("The file is no PCX picture.");
    }
    PcxHeader header;
    header.version = file[1];
    header.hasRunLengths = file[2] != 0;
    header.bits = file[3];
    header.planes = file[65];
    const int width = LittleEndian16(file, 8) - LittleEndian16(file, 4) + 1;
    const int height = LittleEndian16(file, 10) - LittleEndian16(file, 6) + 1;
    const std::int64_t pixelsOfRun = 8 * (header.hasRunLengths ? kLongestRun : 1);
    CheckClaimedSize(width, height, file.size(),
                     kMostTruncated * pixelsOfRun / (header.bits * header.planes));
    header.width = width;
    header.height = height;
    header.planeBytes = LittleEndian16(file, 66);
    if (header.planeBytes == 0) {
        header.planeBytes = ((width * header.bits + 7) / 8 + 1) / 2 * 2;
    }
    header.dotsPerInchX = LittleEndian16(file, 12);
    header.dotsPerInchY = LittleEndian16(file, 14);
    // Old programs put the size of their window or screen here.
    const bool isScreen = header.dotsPerInchX == width || header.dotsPerInchX == 640 ||
                          header.dotsPerInchX == 320 || header.dotsPerInchY == height;
    if (isScreen || header.dotsPerInchX == 0 || header.dotsPerInchY == 0) {
        header.dotsPerInchX = header.dotsPerInchY = 0;
    }
    return header;
}

PcxPalette ReadPcxHeaderPalette(ByteView file, const PcxHeader& header) {
    const ByteView palette = Slice(file, kPaletteAt, kPaletteBytes);
    if (IsCgaPalette(palette, header)) {
        return MakeCgaPalette(palette);
    }
    const std::size_t colours = std::size_t{1} << (header.bits * header.planes);
    const auto entry = [&](std::size_t i) {
        return Colour{palette[3 * i], palette[3 * i + 1], palette[3 * i + 2]};
    };
    PcxPalette result{};
    if (colours == 2) { // black and white where the header tells no two colours apart
        const bool isSet = header.version != kVersionWithoutPalette && entry(0) != entry(1);
        result[0] = Bgra(isSet ? entry(0) : Colour{0, 0, 0});
        result[1] = Bgra(isSet ? entry(1) : Colour{255, 255, 255});
        return result;
    }
    const bool isEmpty = std::all_of(palette.begin(), palette.end(), [](std::uint8_t v) { return v == 0; });
    for (std::size_t i = 0; i < kDisplayColours.size(); ++i) {
        result[i] = Bgra(isEmpty || header.version == kVersionWithoutPalette ? kDisplayColours[i] : entry(i));
    }
    return result;
}

ByteView FindPcxPalette(ByteView file) noexcept {
    if (file.size() <= kPcxHeaderBytes + kLongPaletteBytes) {
        return {};
    }
    const ByteView colours = file.last(kLongPaletteBytes);
    return file[file.size() - kLongPaletteBytes - 1] == kPaletteMarker ? colours : ByteView{};
}

PcxPalette MakePcxPalette(ByteView colours) noexcept {
    PcxPalette result{};
    for (std::size_t i = 0; i < result.size(); ++i) {
        const auto grey = static_cast<std::uint8_t>(i);
        result[i] = colours.size() < kLongPaletteBytes
                        ? std::array<std::uint8_t, 4>{grey, grey, grey, 255}
                        : Bgra({colours[3 * i], colours[3 * i + 1], colours[3 * i + 2]});
    }
    return result;
}

} // namespace pictorel::codecs
