// What the still life is made of: peel, skin, glaze and varnished wood.
#pragma once

#include "Garden.h"
#include "Tabletop.h"

namespace pictorel::sample {

// The lit colour where a ray meets a thing. `direction` is the ray's, unit length.
Vec3 ThingColor(const Hit& hit, Vec3 from, Vec3 direction);

// The lit colour of the table top, which mirrors the things on it and the garden behind.
Vec3 TableColor(const Garden& garden, Vec3 place, Vec3 direction);

} // namespace pictorel::sample
