// Turns rows of TIFF samples into B, G, R, A pixels in sRGB.
#pragma once

#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/tiff/TiffLayout.h"
#include "picture/codecs/tiff/TiffLibrary.h"

#include <cstdint>
#include <vector>

namespace pictorel::codecs {

// Const use is safe from several threads. Samples span the whole range of their type and stand `step` apart
// from pixel to pixel: the colours first, the alpha sample of the layout (where there is one) at `alpha`.
class TiffColouring {
  public:
    TiffColouring(const TiffLayout& layout, bool narrow, const TiffFile& tiff, ByteView icc);

    void ColourRow(const std::uint8_t* samples, int step, int alpha, std::uint8_t* bgra, int pixels) const;
    void ColourRow(const std::uint16_t* samples, int step, int alpha, std::uint8_t* bgra, int pixels) const;

  private:
    void BuildGreys();
    void BuildPalette(const TiffFile& tiff, ByteView icc);
    template <class Sample>
    void Colour(const Sample* samples, int step, int alpha, std::uint8_t* bgra, int pixels) const;

    const TiffLayout& layout_;
    ColourConverter converter_;
    std::vector<std::uint32_t> table_; // B, G, R, A in memory, by the one sample of a colour; or empty
};

} // namespace pictorel::codecs
