// How far a long operation has come, see ProgressBar.h.
#include "controls/ProgressBar.h"

namespace pictorel {

ProgressBar::ProgressBar(QWidget* parent) : QProgressBar(parent), Control(static_cast<QWidget&>(*this)) {
    setTextVisible(false);
}

void ProgressBar::SetValueRange(int minimum, int maximum, int value, int /*page*/) {
    setRange(minimum, maximum);
    setValue(value);
}

} // namespace pictorel
