// Where the values of a picture begin and end when its outermost pixels do not count.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/kernels/point/Histogram.h"

#include <array>

namespace pictorel::engine {

// The darkest and the brightest value that are left when at most 0.5 % of the pixels are clipped below and as
// many above.
struct ValueEnds {
    int lowest;
    int highest;
};

// `histogram` counts one pixel or more.
ValueEnds EndsOf(const Histogram& histogram);

// Of blue, green and red, pixels that cannot be seen left out. All three are {0, 255} where none can.
std::array<ValueEnds, 3> ChannelEnds(const PixelArray& source);

} // namespace pictorel::engine
