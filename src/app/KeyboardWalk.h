// The order in which the Tab key walks through the window, and what controls without a caption are called.
#pragma once

#include "controls/ControlArray.h"

namespace pictorel {

// As the eye goes: the tool bar, the tools below the picture, the row of tabs, each page from top to bottom,
// the history; left to right within a row.
void SetTabOrder(const ControlRegistry& controls);

// Gives each control that shows no text of its own a name that a screen reader can say.
void NameControls(const ControlRegistry& controls);

} // namespace pictorel
