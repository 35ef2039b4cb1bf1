// The mountains: their shape, their shadows and the colour of their ground. Lengths are kilometres, the lake
// is at height 0.
#pragma once

#include "Vec3.h"

#include <vector>

namespace pictorel::sample {

class Terrain {
  public:
    Terrain();

    static constexpr float kNear = 2.2F;
    static constexpr float kFar = 30.0F;

    // Height of the ground; below 0 is lake bed. `octaves` sets how fine the detail is.
    float Height(float x, float z, int octaves) const;

    // The lit colour of the ground, as seen from anywhere. `detail` is the width of a pixel there.
    Vec3 Shade(float x, float z, float detail) const;

  private:
    void TraceShadows();

    // Grids over the land, read interpolated: its coarse form, and how much of the sun each cell sees (0..1).
    std::vector<float> floor_;
    std::vector<float> relief_;
    std::vector<float> sun_;
};

} // namespace pictorel::sample
