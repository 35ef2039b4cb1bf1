// Wide Gaussian blurs: the picture is halved, blurred where it is small, and doubled again, so that the time
// hardly depends on the width.
#pragma once

#include "picture/engine/kernels/blur/WideRows.h"

#include <cstddef>
#include <memory>

namespace pictorel::engine {

// How often to halve for a Gaussian of this standard deviation (in pixels), and the deviation that is left to
// do then, in pixels of the halved picture. Halving and doubling by the binomial 1 4 6 4 1 (Burt and Adelson
// 1983, "The Laplacian pyramid as a compact image code") blur by a variance of 1 each, in pixels of the
// larger one. What they fold over from higher frequencies stays below half a level: the bell that is left
// must be wide enough to take it away.
struct PyramidPlan {
    explicit PyramidPlan(double sigmaInPixels);

    int halvings = 0;
    double sigma;
};

// Rows of a picture or plane halved `times` times. Beyond its bounds they go on.
std::unique_ptr<WideRows> HalvedRowsOf(const PixelArray& source, int times, Columns columns);

// The halved plane, halved `times` times (once or more). Its bounds go as far beyond the picture's as its
// border reaches, so that what lies beyond them is constant.
WidePlane Halved(const PixelArray& source, int times);
WidePlane Halved(const WidePlane& source, int times);

// Rows doubled, from strips of what is to be doubled. The columns begin at an even number.
class DoubledRows : public WideRows {
  public:
    DoubledRows(const RowsOfStrip& source, Columns columns); // and one more where their number is odd

    void Make(int y, Wide* row) override;

  private:
    WideRing ring_;
};

// The same as opaque pixels.
class DoubledPixels : public PixelRows {
  public:
    DoubledPixels(const RowsOfStrip& source, Columns columns);

    void Make(int y, const PixelTarget& target) override;

  private:
    std::size_t half_;
    WideRing ring_;
};

} // namespace pictorel::engine
