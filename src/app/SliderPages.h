// The tool pages' own controls on one grid: icon, caption, slider, value, and the buttons above and below
// them.
#pragma once

#include "app/ControlTable.h"

#include <vector>

namespace pictorel {

// Appends the rows of Slider_Tab, its companions, and the buttons of all four pages.
void AppendSliderPages(std::vector<ControlRow>& rows);

} // namespace pictorel
