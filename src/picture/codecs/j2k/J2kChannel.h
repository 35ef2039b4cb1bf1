// A channel of a JPEG 2000 picture: a component, through its palette where it has one.
#pragma once

#include "picture/codecs/j2k/J2kStream.h"
#include "picture/codecs/j2k/Jp2Boxes.h"

#include <cstdint>
#include <vector>

namespace pictorel::codecs {

// A component within the samples of a tile.
struct J2kPlane {
    const std::uint8_t* data = nullptr;
    J2kArea area;     // on its own grid
    int halvings = 0; // by which that is coarser than the component says
};

class J2kChannel {
  public:
    // The stream has to live as long as this.
    J2kChannel(const J2kStream& stream, const Jp2Palette& palette, const Jp2Boxes::Channel& channel);

    std::size_t Component() const { return component_; }

    // Of 0..65535: the level at `eighths` eighths of the range, without colour where the channel is a
    // difference.
    int LevelAt(std::size_t eighths) const { return levels_[levels_.size() * eighths / 8]; }
    int Neutral() const { return LevelAt(4); }

    // The levels (0..65535) for the pixels of row `row` of the part, `step` apart. Between coarser samples
    // they are interpolated, each sample standing for the middle of the pixels that it covers.
    void FetchRow(const J2kPlane& plane, const J2kArea& part, std::int64_t row, std::uint16_t* out,
                  std::size_t step) const;

  private:
    // Where a pixel lies among the samples of one direction.
    struct Place {
        std::int64_t low = 0; // on the grid of the plane, from its beginning on
        std::int64_t high = 0;
        int highWeight = 0; // of kWhole
    };
    static constexpr int kWhole = 256;

    void FillLevels(const Jp2Palette& palette, int column);
    std::uint16_t LevelOf(const std::uint8_t* sample) const;
    Place PlaceOf(std::int64_t pixel, std::int64_t pixelStep, std::int64_t sampleStep, std::int64_t begin,
                  std::int64_t end) const;
    const std::uint8_t* SampleAt(const J2kPlane& plane, std::int64_t x, std::int64_t y) const;

    const J2kStream& stream_;
    std::size_t component_;
    J2kComponent samples_;
    bool isLookedUp_;
    int droppedBits_ = 0;               // of samples of more than 16
    std::vector<std::uint16_t> levels_; // of each sample, signed ones moved up to begin at 0
};

} // namespace pictorel::codecs
