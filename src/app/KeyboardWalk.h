// The order in which the Tab key walks through the window, and what controls without a caption are called.
#pragma once

#include "app/MainControls.h"

namespace pictorel {

// As the eye goes: the tool bar, the picture's scroll bars, the tools below the picture, the row of tabs,
// each page from top to bottom, the history; left to right within a row.
void SetTabOrder(const MainControls& controls);

// Gives each control that shows no text of its own, and has none in its table, a name that a screen reader
// can say.
void NameControls(const MainControls& controls);

} // namespace pictorel
