// One choice of several; the siblings in one container exclude each other, see RadioButton.h.
#include "controls/RadioButton.h"

namespace pictorel {

RadioButton::RadioButton(QWidget* parent) : QRadioButton(parent), Control(static_cast<QWidget&>(*this)) {}

} // namespace pictorel
