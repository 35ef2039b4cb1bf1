// The header, colour map and footer of a Targa file.
#pragma once

#include "picture/codecs/Codec.h"

#include <array>
#include <cstdint>
#include <vector>

namespace pictorel::codecs {

// What the bits beside the colour mean.
enum class TgaAlpha {
    None,          // nothing
    Unsure,        // alpha, unless it is 0 everywhere
    Plain,         // alpha
    Premultiplied, // alpha by which the colour was multiplied
};

enum class TgaColour { Mapped, True, Grey };

struct TgaHeader {
    int width = 0;
    int height = 0;
    TgaColour colour = TgaColour::True;
    bool hasRunLengths = false;
    int pixelBytes = 0;
    bool rightToLeft = false;
    bool topDown = false;
    int interleave = 1; // rows 0, n, 2n ... of the picture come first, then 1, n + 1 ...
    TgaAlpha alpha = TgaAlpha::None;
    // Of Mapped: blue, green, red, alpha of every index that a pixel can have; those that the map leaves out
    // are black.
    std::vector<std::array<std::uint8_t, 4>> palette;
    ByteView pixels;
};

// One colour of 1 (grey), 2 (five bits each), 3 or 4 bytes as blue, green, red, alpha.
std::array<std::uint8_t, 4> TgaColourOf(const std::uint8_t* data, int bytes, bool hasAlpha) noexcept;

// Whether the fields of the header make sense together.
bool IsTgaHeader(ByteView file) noexcept;

// Checks the limits. Throws ImagingError (UnsupportedFormat, TooLarge).
TgaHeader ReadTgaHeader(ByteView file);

// The footer of version 2 and the offsets in it, which the writer needs too.
inline constexpr std::string_view kTgaSignature{"TRUEVISION-XFILE.\0", 18};
inline constexpr std::size_t kTgaFooterBytes = 26;
inline constexpr std::size_t kTgaExtensionBytes = 495;
inline constexpr std::size_t kTgaAttributesAt = 494; // in the extension area: one of the numbers below
enum TgaAttributes : std::uint8_t { kTgaNoAlpha = 0, kTgaAlpha = 3, kTgaPremultipliedAlpha = 4 };

} // namespace pictorel::codecs
