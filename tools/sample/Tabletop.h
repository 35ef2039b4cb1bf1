// The things on the table of the still life: where they stand, where a ray meets them, and how they shade one
// another.
#pragma once

#include "Vec3.h"

#include <limits>
#include <span>

namespace pictorel::sample {

// The room: x to the right, y up from the table top, z away from the camera. The unit is about 20
// centimetres.

enum class Skin { kOrange, kApple, kPlum };

struct Ball {
    Vec3 centre;
    float radius;
    Skin skin;
};

inline constexpr float kVaseHeight = 1.45F;
inline constexpr float kVaseZ = 0.25F; // its axis stands at x = 0
inline constexpr float kNoHit = std::numeric_limits<float>::infinity();

inline constexpr Vec3 kWindowLight{3.1F, 2.70F, 2.10F};
inline constexpr Vec3 kRoomLight{0.20F, 0.23F, 0.30F};

std::span<const Ball> Fruit();

// Direction to the middle of the window.
Vec3 ToWindow();

// Outline of the vase: a foot, a full belly, a neck and a lip.
float VaseRadius(float y);

struct Hit {
    float distance = kNoHit;
    const Ball* fruit = nullptr; // null for the vase
};

// The nearest fruit or vase along a ray; the table is not among them.
Hit NearestThing(Vec3 from, Vec3 direction);

// How much of the window and of the room a place sees past the things around it, 0..1 each.
struct Light {
    float window = 1.0F;
    float room = 1.0F;
};

enum class Owner { kTable, kFruit, kVase };

// `self` is the fruit that the place lies on, if it does.
Light LightAt(Vec3 place, Vec3 normal, Owner owner, const Ball* self = nullptr);

} // namespace pictorel::sample
