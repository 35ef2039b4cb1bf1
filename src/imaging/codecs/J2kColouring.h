// Turns the samples of JPEG 2000 tiles, of any depth and meaning, into pixels.
#pragma once

#include "imaging/codecs/ColourProfile.h"
#include "imaging/codecs/J2kDecoder.h"
#include "imaging/codecs/Jp2Boxes.h"

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
    // A channel: a component, through its palette where it has one.
    struct Source {
        std::size_t component = 0;
        std::vector<std::uint16_t> levels; // 0..65535 of each sample, signed ones moved up to begin at 0
        int neutral = 0;                   // the level without colour where this is a difference of colours
    };
    // A component within the samples of a tile.
    struct Plane {
        const std::uint8_t* data = nullptr;
        J2kArea area; // on its own grid
    };
    enum class Alpha { None, Unsure, Plain, Premultiplied };
    using Levels = std::vector<std::uint16_t>;

    std::vector<Source> FindSources() const;
    void AssignChannels();
    bool IsPlainBytes() const;
    std::vector<Plane> PlanesOf(const J2kTile& tile) const;
    void ConvertPlainRow(const std::vector<Plane>& planes, std::int64_t row, std::uint8_t* bgra,
                         int pixels) const;
    void ConvertAnyRow(const std::vector<Plane>& planes, const J2kArea& part, std::int64_t row,
                       std::uint8_t* bgra) const;
    void FetchRow(const Source& source, const Plane& plane, const J2kArea& part, std::int64_t row,
                  std::uint16_t* out, std::size_t step) const;

    const J2kStream& stream_;
    const Jp2Boxes& boxes_;
    J2kSpace space_;
    std::size_t colours_ = 3;
    Alpha alpha_ = Alpha::None;
    std::vector<Source> sources_; // the colours in their order, then alpha
    bool isPlain_ = false;        // bytes of RGB or grey that are taken as they are
    std::size_t samplesAPixel_ = 4;
    ColourConverter converter_{SampleLayout::Rgba16, {}};
};

} // namespace pictorel::codecs
