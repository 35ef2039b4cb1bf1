// The flowers of the still life.
#pragma once

#include "Picture.h"

namespace pictorel::sample {

// Where the vase opens on the picture, in picture heights.
struct VaseMouth {
    float x, y;
    float radius;
};

void ArrangeBouquet(Picture& picture, const VaseMouth& mouth);

} // namespace pictorel::sample
