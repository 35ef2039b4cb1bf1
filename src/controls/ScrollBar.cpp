// A scroll bar, see ScrollBar.h.
#include "controls/ScrollBar.h"

namespace pictorel {

ScrollBar::ScrollBar(QWidget* parent) : QScrollBar(parent), Control(static_cast<QWidget&>(*this)) {
    setFocusPolicy(Qt::TabFocus); // whoever has no mouse moves the picture by it
}

void ScrollBar::SetValueRange(int minimum, int maximum, int value, int page) {
    setRange(minimum, maximum);
    setSingleStep(1);
    setPageStep(page);
    setValue(value);
}

} // namespace pictorel
