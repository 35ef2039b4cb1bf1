// The header and the palettes of a PCX file.
#pragma once

#include "picture/codecs/Codec.h"

#include <array>
#include <cstdint>

namespace pictorel::codecs {

inline constexpr std::size_t kPcxHeaderBytes = 128;

struct PcxHeader {
    int version = 0;
    bool hasRunLengths = false;
    int bits = 0; // of a pixel in one plane
    int planes = 0;
    int width = 0;
    int height = 0;
    int planeBytes = 0; // of one row of one plane
    double dotsPerInchX = 0;
    double dotsPerInchY = 0;

    bool IsIndexed() const { return bits * planes <= 8; }
    std::size_t RowBytes() const {
        return static_cast<std::size_t>(planeBytes) * static_cast<std::size_t>(planes);
    }
};

// Whether the fields of the header make sense together.
bool IsPcxHeader(ByteView file) noexcept;

// Checks the limits. Throws ImagingError (UnsupportedFormat, TooLarge).
PcxHeader ReadPcxHeader(ByteView file);

// Blue, green, red, alpha of every index.
using PcxPalette = std::array<std::array<std::uint8_t, 4>, 256>;

// Of a picture of up to 4 bits a pixel, from the header.
PcxPalette ReadPcxHeaderPalette(ByteView file, const PcxHeader& header);

// The bytes (red, green, blue) of a 256-colour palette at the end of the file, behind its marker; empty where
// there is none.
ByteView FindPcxPalette(ByteView file) noexcept;

// Of a picture of 8 bits a pixel; greys where `colours` is too short for a palette.
PcxPalette MakePcxPalette(ByteView colours) noexcept;

} // namespace pictorel::codecs
