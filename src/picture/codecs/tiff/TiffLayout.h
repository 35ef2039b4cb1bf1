// How the pixels of one TIFF page are stored: read from its directory, checked before memory is taken.
#pragma once

#include "picture/codecs/Codec.h"
#include "picture/codecs/tiff/TiffLibrary.h"
#include "picture/codecs/tiff/TiffStructure.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::codecs {

enum class TiffColour { Grey, Rgb, Palette, Cmyk, Lab, IccLab };

enum class TiffAlpha {
    None,
    Unassociated,
    Associated, // colours are multiplied by it
    Undeclared, // a sample too many of which the file says nothing
};

struct TiffLayout {
    int width = 0;
    int height = 0;
    int orientation = 1;
    std::uint16_t compression = 1;

    int bits = 1;        // a sample
    int samples = 1;     // a pixel, in the file
    bool floats = false; // whether samples are floating-point numbers
    double lowest = 0;   // of those
    double highest = 1;

    TiffColour colour = TiffColour::Grey;
    bool inverted = false; // grey: 0 is white
    int colours = 1;       // samples that make the colour, the first of a pixel
    TiffAlpha alpha = TiffAlpha::None;
    int alphaSample = 0; // its place among the samples of a pixel
    // The colours come from the library's own conversion to 8-bit RGB, a block at a time.
    bool convertedByLibrary = false;

    // Strips are blocks as wide as the picture.
    bool separatePlanes = false;
    bool tiled = false;
    int blockWidth = 0;
    int blockHeight = 0;
    int blocksAcross = 0;
    int blocksDown = 0;
    std::size_t blockRowBytes = 0; // decoded, of one plane where they are separate
    bool reversedBits = false;     // the file's bytes have their lowest bit first

    std::size_t BlockBytes() const noexcept { return blockRowBytes * static_cast<std::size_t>(blockHeight); }
    int Blocks() const noexcept { return blocksAcross * blocksDown; }
    // The planes that must be decoded, by their sample.
    std::vector<int> Planes() const;
};

// Throws ImagingError: TooLarge beyond the limits, UnsupportedFormat for kinds that are not read and for
// claims that the bytes of the file cannot bear out.
TiffLayout ReadTiffLayout(const TiffFile& tiff, const TiffDirectory& directory, ByteView file);

} // namespace pictorel::codecs
