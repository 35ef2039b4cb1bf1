// The mark at the left of a message box, see MessageMark.h.
#include "controls/MessageMark.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

namespace pictorel {
namespace {

constexpr int kSide = 40;
constexpr double kStroke = 2.5;
constexpr QPointF kMiddle(kSide / 2.0, kSide / 2.0);

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

struct Mark {
    MessageIcon icon;
    QRgb colour; // those of the drawn icons
    void (*draw)(QPainter& painter);
};

constexpr std::array<Mark, 3> kMarks{{{MessageIcon::Critical, 0xFFFF6B6B, DrawCross},
                                      {MessageIcon::Exclamation, 0xFFFFB454, DrawExclamation},
                                      {MessageIcon::Question, 0xFF56CCF2, DrawQuestion}}};

} // namespace

QPixmap MessageMark(MessageIcon icon, double devicePixelRatio) {
    const auto* const shown =
        std::find_if(kMarks.begin(), kMarks.end(), [&](const Mark& m) { return m.icon == icon; });
    const int side = static_cast<int>(std::lround(kSide * devicePixelRatio));
    QPixmap mark(side, side);
    mark.setDevicePixelRatio(devicePixelRatio);
    mark.fill(Qt::transparent);
    QPainter painter(&mark);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(shown->colour), kStroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawEllipse(kMiddle, 17, 17);
    shown->draw(painter);
    return mark;
}

} // namespace pictorel
