// Copies of the picture, or of a part of it, that are finer than the reduced copy: what previews start from.
#pragma once

#include "editor/OperationTable.h"
#include "picture/PicturePyramid.h"

#include <array>
#include <memory>

namespace pictorel {

// What clips, picks extremes or moves fine edges cannot be foretold from averages over 24 x 24 pixels. So the
// preview of an operation works on a finer copy of the same picture part, and its result is reduced. Each
// copy is made when it is first asked for, carries its own Reduction, and is the picture itself where that is
// no larger.
class FinerCopies {
  public:
    // `share` is the part of the picture that is shown; the copies are so much finer.
    explicit FinerCopies(std::shared_ptr<PicturePyramid> pyramid, double share = 1)
        : pyramid_(std::move(pyramid)), share_(share) {}

    const PixelArray& Picture() const noexcept { return pyramid_->Picture(); }

    // A copy of this size, with its Reduction. Throws ImagingError.
    PixelArray Copy(int width, int height) const;

    // Structural similarity of preview and result is above 0.98 with the copy of an operation's fineness.
    const PixelArray& Of(Fineness fineness);

  private:
    PixelArray CopyOf(double pixels) const;
    PixelArray Halved(double pixels) const;
    PixelArray Made(Fineness fineness) const;

    std::shared_ptr<PicturePyramid> pyramid_;
    double share_;
    std::array<PixelArray, 4> made_; // by fineness, empty until asked for
};

} // namespace pictorel
