// A picture and its halved copies, each made when it is first asked for.
#pragma once

#include "picture/PixelArray.h"

#include <array>
#include <memory>
#include <utility>

namespace pictorel {

// Level 0 is the picture itself; a pixel of level n is the mean of 2 x 2 pixels of level n - 1, with what an
// odd side leaves alone counted twice. From level 1 on colour is premultiplied when the picture has alpha.
// All levels together take a third of the picture's memory, and only those that were asked for take any.
class PicturePyramid {
  public:
    PicturePyramid() = default;
    explicit PicturePyramid(PixelArray picture) : picture_(std::move(picture)) {}

    const PixelArray& Picture() const noexcept { return picture_; }

    // The longest side that there is has come down to one pixel here.
    static constexpr int kDeepestLevel = 15;

    // Made from the nearest finer level that there is. Throws ImagingError(OutOfMemory).
    const PixelArray& Level(int level);

    // The level from which a zoom below 1 is drawn with a scale in (0.5, 1], so that a filter of two pixels'
    // width is enough; 0 for zooms above 0.5.
    static int LevelFor(double zoom) noexcept;

  private:
    PixelArray picture_;
    std::array<PixelArray, kDeepestLevel + 1> halved_; // by level, empty until asked for
};

// Gives everyone who asks for the pyramid of one picture the same one, so that its pixels are read once.
class SharedPyramids {
  public:
    std::shared_ptr<PicturePyramid> Of(const PixelArray& picture);

  private:
    std::weak_ptr<PicturePyramid> newest_;
};

} // namespace pictorel
