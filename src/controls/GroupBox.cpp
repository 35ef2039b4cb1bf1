// A frame around controls that belong together, with or without a caption, see GroupBox.h.
#include "controls/GroupBox.h"

#include <QPainter>
#include <QStyle>

namespace pictorel {

GroupBox::GroupBox(QWidget* parent) : QWidget(parent), Control(static_cast<QWidget&>(*this)) {}

void GroupBox::SetCaption(const QString& text) {
    caption_ = text;
    framed_ = framed_ || !text.isEmpty();
    update();
}

void GroupBox::SetFramed(bool framed) {
    framed_ = framed;
    update();
}

void GroupBox::paintEvent(QPaintEvent* /*event*/) {
    if (!framed_) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int captionHeight = caption_.isEmpty() ? 0 : fontMetrics().height() + 4;
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(palette().color(QPalette::AlternateBase));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, captionHeight + 0.5, -0.5, -0.5), 4, 4);
    if (!caption_.isEmpty()) {
        style()->drawItemText(&painter, QRect(0, 0, width(), captionHeight), Qt::AlignLeft | Qt::AlignTop,
                              palette(), isEnabled(), caption_, QPalette::WindowText);
    }
}

} // namespace pictorel
