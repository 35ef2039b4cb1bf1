// A spinner, see UpDown.h.
#include "controls/UpDown.h"

#include "controls/SkinColours.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>
#include <QWheelEvent>

#include <algorithm>

namespace pictorel {
namespace {

constexpr int kRepeatDelay = 400;   // milliseconds before a held arrow repeats
constexpr int kRepeatInterval = 60; // milliseconds between repeats

} // namespace

UpDown::UpDown(QWidget* parent) : QWidget(parent), Control(static_cast<QWidget&>(*this)) {}

void UpDown::SetRange(int minimum, int maximum) {
    minimum_ = minimum;
    maximum_ = maximum;
}

void UpDown::SetValue(int value) {
    const int clamped = std::clamp(value, minimum_, maximum_);
    if (clamped == value_) {
        return;
    }
    value_ = clamped;
    emit Changed(value_);
}

void UpDown::SetBuddy(EditField& buddy) {
    buddy_ = &buddy;
    buddy.installEventFilter(this);
}

void UpDown::Step(int direction) {
    if (!isEnabled()) {
        return;
    }
    if (buddy_ != nullptr) {
        bool isNumber = false;
        const int shown = buddy_->text().toInt(&isNumber);
        if (isNumber) {
            value_ = std::clamp(shown, minimum_, maximum_);
        }
    }
    const int next = std::clamp(value_ + direction, minimum_, maximum_);
    if (next == value_) {
        emit Changed(value_); // the number in the field may be new
    }
    Choose(next);
}

void UpDown::Choose(int value) {
    if (!isEnabled()) {
        return;
    }
    SetValue(value);
    if (buddy_ != nullptr) {
        buddy_->setText(QString::number(value_));
    }
}

bool UpDown::eventFilter(QObject* watched, QEvent* event) {
    if (watched == buddy_ && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            Step(key == Qt::Key_Up ? 1 : -1);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void UpDown::mousePressEvent(QMouseEvent* event) {
    heldDirection_ = event->position().y() < height() / 2.0 ? 1 : -1;
    Step(heldDirection_);
    repeatTimer_ = startTimer(kRepeatDelay);
    update();
}

void UpDown::mouseReleaseEvent(QMouseEvent* /*event*/) {
    killTimer(repeatTimer_);
    heldDirection_ = 0;
    update();
}

void UpDown::timerEvent(QTimerEvent* event) {
    if (event->timerId() != repeatTimer_) {
        return;
    }
    killTimer(repeatTimer_);
    repeatTimer_ = startTimer(kRepeatInterval);
    Step(heldDirection_);
}

void UpDown::wheelEvent(QWheelEvent* event) {
    Step(event->angleDelta().y() > 0 ? 1 : -1);
}

void UpDown::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colours = palette();
    painter.setPen(EdgeColour(colours));
    painter.setBrush(colours.color(QPalette::Button));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
    painter.setPen(Qt::NoPen);
    for (const int direction : {1, -1}) {
        painter.setBrush(
            colours.color(heldDirection_ == direction ? QPalette::Highlight : QPalette::ButtonText));
        const QPointF centre(width() / 2.0, height() * (direction > 0 ? 0.29 : 0.71));
        painter.drawPolygon(
            QPolygonF({centre + QPointF(-3, 1.5 * direction), centre + QPointF(3, 1.5 * direction),
                       centre + QPointF(0, -2 * direction)}));
    }
}

void UpDown::SetValueRange(int minimum, int maximum, int value, int /*page*/) {
    SetRange(minimum, maximum);
    SetValue(value);
}

} // namespace pictorel
