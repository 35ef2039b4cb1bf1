// The garden behind the still life, far out of focus.
#pragma once

#include "Vec3.h"

#include <array>

namespace pictorel::sample {

class Garden {
  public:
    Garden();

    // The light at a place of the picture, in picture heights.
    Vec3 Color(float x, float y) const;

  private:
    // A point of light that the lens spreads over an even disc.
    struct Blur {
        float x, y;
        float radius;
        Vec3 light;
    };
    std::array<Blur, 64> blurs_{};
};

} // namespace pictorel::sample
