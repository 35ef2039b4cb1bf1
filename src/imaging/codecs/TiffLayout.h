// What the tags of a TIFF picture say about its samples.
#pragma once

#include "imaging/codecs/Codec.h"
#include "imaging/codecs/ColourProfile.h"

#include <tiffio.h>

#include <array>
#include <cstdint>
#include <vector>

namespace pictorel::codecs {

enum class TiffColour { Grey, Palette, Rgb, Cmyk, Lab };

struct TiffLayout {
    int width = 0;
    int height = 0;
    int orientation = 1;
    int bits = 8; // a sample
    int sampleFormat = SAMPLEFORMAT_UINT;
    int samples = 1;                 // a pixel, those that mean nothing to us included
    bool isPlanar = false;           // samples of a kind stand together, one plane after another
    bool isDecodedByLibrary = false; // exotic: libtiff itself makes R, G, B, A of it
    TiffColour colour = TiffColour::Grey;
    int colourSamples = 1;    // the first ones of a pixel
    bool isInverted = false;  // 0 is white
    bool hasSignedAb = false; // L*a*b* with signed a* and b*
    int alphaSample = -1;
    bool isAlphaGuessed = false; // no tag names the fourth sample
    bool isPremultiplied = false;
    double floatMinimum = 0;                          // of floating-point samples: black
    double floatMaximum = 1;                          // and white
    std::vector<std::array<std::uint8_t, 4>> palette; // B, G, R, A in sRGB
    ByteBuffer icc;
    double dotsPerInchX = 0;
    double dotsPerInchY = 0;

    bool HasWideSamples() const noexcept { return bits > 8; } // unpacked to 16 bits, otherwise to 8
};

// Of the current directory, checked against the limits and against the size of the file. Throws
// ImagingError(UnsupportedFormat, TooLarge).
TiffLayout ReadTiffLayout(TIFF* tiff, std::size_t fileBytes);

} // namespace pictorel::codecs
