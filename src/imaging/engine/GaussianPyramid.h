// Wide Gaussian blurs: the picture is halved, blurred where it is small, and doubled again, so that the time
// hardly depends on the width.
#pragma once

#include "imaging/engine/WidePlane.h"

#include <cstddef>
#include <vector>

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

// The halved picture or plane. Its bounds go as far beyond the picture's as its border reaches, so that what
// lies beyond them is constant.
WidePlane Halved(const PixelArray& source);
WidePlane Halved(const WidePlane& source);

// Rows of a strip of the doubled plane, asked for in ascending order.
class DoubledRows {
  public:
    // The pixels left <= x < left + width, `left` an even number.
    DoubledRows(const WidePlane& half, int left, int width);

    // Valid until the next call.
    const WideComponent* Row(int y);

  private:
    RowRing<WidePlane> ring_;
    std::size_t columnsLength_;
    std::size_t halfLength_;
    WideRow columns_;
    WideRow even_;
    WideRow odd_;
    WideRow row_;
};

} // namespace pictorel::engine
