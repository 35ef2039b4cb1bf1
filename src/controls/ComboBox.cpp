// A list to choose from, each entry with a data text, see ComboBox.h.
#include "controls/ComboBox.h"

namespace pictorel {

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent), Control(static_cast<QWidget&>(*this)) {}

} // namespace pictorel
