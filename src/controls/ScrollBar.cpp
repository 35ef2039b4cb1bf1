// A scroll bar, see ScrollBar.h.
#include "controls/ScrollBar.h"

namespace pictorel {

ScrollBar::ScrollBar(QWidget* parent) : QScrollBar(parent), Control(static_cast<QWidget&>(*this)) {}

} // namespace pictorel
