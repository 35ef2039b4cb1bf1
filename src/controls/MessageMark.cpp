// The mark at the left of a message box, see MessageMark.h.
#include "controls/MessageMark.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace pictorel {
namespace {

constexpr int kSide = 40;
constexpr double kStroke = 2.5;
constexpr QPointF kMiddle(kSide / 2.0, kSide / 2.0);

QColor ColourOf(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Critical:
            return {0xff, 0x6b, 0x6b};
        case MessageIcon::Exclamation:
            return {0xff, 0xb4, 0x54};
        case MessageIcon::Question:
            break;
    }
    return {0x56, 0xcc, 0xf2};
}

void DrawCross(QPainter& painter) {
    painter.drawLine(QPointF(15, 15), QPointF(25, 25));
    painter.drawLine(QPointF(25, 15), QPointF(15, 25));
}

void DrawDot(QPainter& painter) {
    painter.setBrush(painter.pen().color());
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPointF(kMiddle.x(), 27.5), 1.75, 1.75);
}

void DrawExclamation(QPainter& painter) {
    painter.drawLine(QPointF(kMiddle.x(), 12), QPointF(kMiddle.x(), 22));
    DrawDot(painter);
}

void DrawQuestion(QPainter& painter) {
    QPainterPath hook(QPointF(15.5, 15.5));
    hook.arcTo(QRectF(15.5, 11, 9, 9), 180, -225);
    hook.quadTo(QPointF(kMiddle.x(), 20.5), QPointF(kMiddle.x(), 22.5));
    painter.drawPath(hook);
    DrawDot(painter);
}

} // namespace

QPixmap MessageMark(MessageIcon icon, double devicePixelRatio) {
    const int side = static_cast<int>(std::lround(kSide * devicePixelRatio));
    QPixmap mark(side, side);
    mark.setDevicePixelRatio(devicePixelRatio);
    mark.fill(Qt::transparent);
    QPainter painter(&mark);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ColourOf(icon), kStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawEllipse(kMiddle, 17, 17);
    switch (icon) {
        case MessageIcon::Critical:
            DrawCross(painter);
            break;
        case MessageIcon::Exclamation:
            DrawExclamation(painter);
            break;
        case MessageIcon::Question:
            DrawQuestion(painter);
            break;
    }
    return mark;
}

} // namespace pictorel
