// A separator, upright or lying, as its longer side says, see Line.h.
#include "controls/Line.h"

#include <QPainter>

namespace pictorel {

Line::Line(QWidget* parent) : QWidget(parent), Control(static_cast<QWidget&>(*this)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void Line::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QColor colour = palette().color(QPalette::Mid);
    if (height() >= width()) {
        painter.fillRect(QRect(width() / 2, 0, 1, height()), colour);
    } else {
        painter.fillRect(QRect(0, height() / 2, width(), 1), colour);
    }
}

} // namespace pictorel
