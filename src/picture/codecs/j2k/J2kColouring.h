// Turns the samples of JPEG 2000 tiles, of any depth and meaning, into pixels.
#pragma once

#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/j2k/J2kChannel.h"
#include "picture/codecs/j2k/J2kDecoder.h"
#include "picture/codecs/j2k/Jp2Boxes.h"

#include <vector>

namespace pictorel::codecs {

class J2kColouring {
  public:
    // Finds out which channel is which. Both have to live as long as this.
    J2kColouring(const J2kStream& stream, const Jp2Boxes& boxes);

    // Puts the tile where it belongs in the picture, converted to sRGB.
    void Convert(const J2kTile& tile, PixelArray& picture) const;

    // The tiles are in: settles what their alpha means and which profile describes the picture now.
    void Finish(PixelArray& picture) const;

  private:
    enum class Alpha { None, Unsure, Plain, Premultiplied };
    using Levels = std::vector<std::uint16_t>;
    using Planes = std::vector<J2kPlane>;

    std::vector<J2kChannel> FindChannels() const;
    void AssignChannels();
    bool IsPlainBytes() const;
    Planes PlanesOf(const J2kTile& tile) const;
    void ConvertPlainRow(const Planes& planes, std::int64_t row, std::uint8_t* bgra, int pixels) const;
    void ConvertAnyRow(const Planes& planes, const J2kArea& part, std::int64_t row, std::uint8_t* bgra) const;

    const J2kStream& stream_;
    const Jp2Boxes& boxes_;
    J2kSpace space_;
    std::size_t colours_ = 3;
    Alpha alpha_ = Alpha::None;
    std::vector<J2kChannel> channels_; // the colours in their order, then alpha
    bool isPlain_ = false;             // bytes of RGB or grey that are taken as they are
    std::size_t samplesAPixel_ = 4;
    ColourConverter converter_{SampleLayout::Rgba16, {}};
};

} // namespace pictorel::codecs
