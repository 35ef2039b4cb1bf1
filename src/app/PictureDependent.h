// Which controls depend on an open picture.
#pragma once

#include "app/MainControls.h"

#include <vector>

namespace pictorel {

// The controls that are switched on while a picture is open and off while none is, in the order of switching.
// Open is not among them; neither are the tabs, nor the Resize page's fields, which follow its mode.
std::vector<Control*> PictureDependentControls(const MainControls& controls);

} // namespace pictorel
