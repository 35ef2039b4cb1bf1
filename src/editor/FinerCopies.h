// Finer copies of the picture that a reduced copy was made from, for previews that 250 pixels cannot tell.
#pragma once

#include "picture/PicturePyramid.h"

namespace pictorel {

// What clips, picks extremes or moves fine edges cannot be foretold from averages over 24 x 24 pixels. So
// operations on a reduced copy work on a finer one of the same picture part and reduce the result. Each copy
// is made when it is first asked for, carries its own Reduction, and is the picture itself where that is no
// larger.
class FinerCopies {
  public:
    explicit FinerCopies(std::shared_ptr<PicturePyramid> pyramid) : pyramid_(std::move(pyramid)) {}

    const PixelArray& Picture() const noexcept { return pyramid_->Picture(); }

    // A copy of this size, with its Reduction. Throws ImagingError.
    PixelArray Copy(int width, int height) const;

    // Enough for all operations but those below: structural similarity of preview and result above 0.98.
    const PixelArray& Ordinary() const;

    // A third of the pixels, for what takes long and can be told from fewer: what moves pixels, and noise.
    const PixelArray& Lighter() const;

    // For the brightest and the darkest of a square, which averaging loses soonest.
    const PixelArray& ForExtremes() const;

    // Whether the array is one of these copies, unchanged.
    bool Holds(const PixelArray& array) const noexcept;

  private:
    PixelArray CopyOf(double pixels) const;

    std::shared_ptr<PicturePyramid> pyramid_;
    mutable PixelArray ordinary_;
    mutable PixelArray lighter_;
    mutable PixelArray forExtremes_;
};

} // namespace pictorel
