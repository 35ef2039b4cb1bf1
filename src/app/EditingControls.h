// Which controls depend on an open picture.
#pragma once

#include "controls/ControlArray.h"

#include <vector>

namespace pictorel {

// The controls that are switched on while a picture is open and off while none is, in the order of switching.
std::vector<Control*> PictureDependentControls(const ControlRegistry& registry);

} // namespace pictorel
