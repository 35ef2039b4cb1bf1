// A picture and its halved copies, each made when it is first asked for.
#pragma once

#include "imaging/PixelArray.h"

#include <vector>

namespace pictorel {

// Level 0 is the picture itself; a pixel of level n is the mean of 2 x 2 pixels of level n - 1, with what an
// odd side leaves alone counted twice. From level 1 on colour is premultiplied when the picture has alpha.
// All levels together take a third of the picture's memory.
class PicturePyramid {
  public:
    PicturePyramid() = default;
    explicit PicturePyramid(PixelArray picture) : picture_(std::move(picture)) {}

    const PixelArray& Picture() const noexcept { return picture_; }

    // Makes the levels up to this one where they are missing. Throws ImagingError(OutOfMemory).
    const PixelArray& Level(int level);

    // The level from which a zoom below 1 is drawn with a scale in (0.5, 1], so that a filter of two pixels'
    // width is enough; 0 for zooms above 0.5.
    static int LevelFor(double zoom) noexcept;

  private:
    PixelArray picture_;
    std::vector<PixelArray> halved_; // halved_[n] is level n + 1
};

} // namespace pictorel
