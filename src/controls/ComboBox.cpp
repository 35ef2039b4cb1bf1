// A list to choose from, each entry with a data text, see ComboBox.h.
#include "controls/ComboBox.h"

#include <QPainter>
#include <QPolygonF>

namespace pictorel {

ComboBox::ComboBox(QWidget* parent) : QComboBox(parent), Control(static_cast<QWidget&>(*this)) {}

// The skin's frame leaves out the arrow.
void ComboBox::paintEvent(QPaintEvent* event) {
    constexpr double kFromRight = 14; // pixels
    QComboBox::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText));
    const QPointF tip(width() - kFromRight, height() / 2.0 + 2);
    painter.drawPolygon(QPolygonF({tip, tip + QPointF(-4, -4), tip + QPointF(4, -4)}));
}

} // namespace pictorel
