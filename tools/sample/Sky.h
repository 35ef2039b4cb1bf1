// The evening light: sun, sky, clouds and haze of the landscape.
#pragma once

#include "Vec3.h"

namespace pictorel::sample {

// Towards the sun: low, to the right, a little behind the camera. x is right, y up, z ahead.
Vec3 SunDirection();

inline constexpr Vec3 kSunLight{4.60F, 2.35F, 1.00F};
inline constexpr Vec3 kSkyLight{0.22F, 0.29F, 0.47F};

// The light of the sky in a direction (unit length, y >= 0), clouds included.
Vec3 SkyColor(Vec3 direction);

// The colour that distance takes on in a direction.
Vec3 HazeColor(Vec3 direction);

} // namespace pictorel::sample
