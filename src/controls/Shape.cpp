// A place beside a slider that looks like what lies behind it, see Shape.h.
#include "controls/Shape.h"

namespace pictorel {

Shape::Shape(QWidget* parent) : QWidget(parent), Control(static_cast<QWidget&>(*this)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

} // namespace pictorel
