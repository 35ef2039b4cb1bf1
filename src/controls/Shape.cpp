// A small marker, see Shape.h.
#include "controls/Shape.h"

#include <QPainter>

namespace pictorel {

Shape::Shape(QWidget* parent) : QWidget(parent), Control(static_cast<QWidget&>(*this)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Shape::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Button));
    painter.drawRoundedRect(rect(), width() / 2.0, width() / 2.0);
}

} // namespace pictorel
