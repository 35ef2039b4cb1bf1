// The near bank of the landscape: pines at its ends, grass and lupins along it.
#pragma once

#include "Picture.h"

namespace pictorel::sample {

void PlantShore(Picture& picture);

} // namespace pictorel::sample
