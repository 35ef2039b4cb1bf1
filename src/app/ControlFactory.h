// Makes the main window's controls from its inventory.
#pragma once

#include "controls/ControlArray.h"

class QWidget;

namespace pictorel {

// Creates every control of MainWindowControls() below `window`, named "Cmd_Panel_3" (arrays) or "HistoryList"
// (single controls). The registry serves to fill MainControls once.
ControlRegistry CreateControls(QWidget& window);

} // namespace pictorel
