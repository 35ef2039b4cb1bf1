// A horizontal slider, see Slider.h.
#include "controls/Slider.h"

#include "controls/SkinColours.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace pictorel {
namespace {

constexpr double kThumbRadius = 6;
constexpr double kTrackHeight = 3;
constexpr double kTickTop = 6;    // pixels below the track's middle
constexpr double kTickLength = 3; // pixels

} // namespace

Slider::Slider(QWidget* parent) : QSlider(Qt::Horizontal, parent), Control(static_cast<QWidget&>(*this)) {
    SetSteps(1, 5);
    setFocusPolicy(Qt::StrongFocus);
}

void Slider::SetValueRange(int minimum, int maximum, int value, int /*page*/) {
    SetRange(minimum, maximum);
    SetValue(value);
}

void Slider::SetSteps(int small, int large) {
    setSingleStep(small);
    setPageStep(large);
}

void Slider::SetTickSpacing(int spacing) {
    tickSpacing_ = spacing;
    update();
}

void Slider::SetNeutral(int value) {
    neutral_ = value;
    hasNeutral_ = true;
    update();
}

void Slider::SetPending(bool pending) {
    pending_ = pending;
    update();
}

void Slider::SetValue(int value) {
    valueBeforeKeys_.reset();
    setValue(value);
}

void Slider::ChangeTo(int value) {
    const int before = this->value();
    setValue(value);
    if (this->value() != before) {
        emit Changed(this->value());
    }
}

void Slider::Choose(int value) {
    if (held_ || !isEnabled()) {
        return;
    }
    valueBeforeKeys_.reset();
    emit Pressed();
    ChangeTo(value);
    emit Released();
}

double Slider::XOf(int value) const {
    const double range = std::max(1, maximum() - minimum());
    return kThumbRadius + 1 + (width() - 2 * kThumbRadius - 2) * (value - minimum()) / range;
}

int Slider::ValueAt(double x) const {
    const double length = std::max(1.0, width() - 2 * kThumbRadius - 2);
    const double share = std::clamp((x - kThumbRadius - 1) / length, 0.0, 1.0);
    return minimum() + static_cast<int>(std::lround(share * (maximum() - minimum())));
}

QSize Slider::sizeHint() const {
    return {140, 22};
}

void Slider::mousePressEvent(QMouseEvent* event) {
    if (held_) {
        return; // a second button while one is held changes nothing
    }
    held_ = true;
    valueBeforeKeys_.reset();
    valueAtPress_ = value();
    emit Pressed();
    const double x = event->position().x();
    const double thumb = XOf(value());
    dragging_ = std::abs(x - thumb) <= kThumbRadius + 2;
    grabOffset_ = x - thumb;
    if (!dragging_) {
        const int page = x < thumb ? -pageStep() : pageStep();
        const int target = ValueAt(x);
        // The thumb never jumps past the pointer.
        ChangeTo(page < 0 ? std::max(value() + page, target) : std::min(value() + page, target));
    }
    update();
}

void Slider::mouseMoveEvent(QMouseEvent* event) {
    if (dragging_) {
        ChangeTo(ValueAt(event->position().x() - grabOffset_));
    }
}

void Slider::mouseReleaseEvent(QMouseEvent* event) {
    if (!held_ || event->buttons() != Qt::NoButton) {
        return;
    }
    held_ = dragging_ = false;
    update();
    emit Released();
}

void Slider::Cancel() {
    if (!held_) {
        return;
    }
    held_ = dragging_ = false;
    SetValue(valueAtPress_);
    update();
    emit Cancelled();
}

// Whether this event takes the mouse away from a slider that is held.
bool Slider::LosesMouse(const QEvent& event) const {
    switch (event.type()) {
        case QEvent::Hide:
        case QEvent::WindowBlocked: // a modal window came up
            return true;
        case QEvent::WindowDeactivate: {
            // Some desktops make every new window the active one, also the preview that this press shows.
            const QWidget* const active = QApplication::activeWindow();
            return active == nullptr || active == window() || active->parentWidget() != window();
        }
        case QEvent::EnabledChange:
            return !isEnabled();
        default:
            return false;
    }
}

bool Slider::event(QEvent* event) {
    if (held_ && LosesMouse(*event)) {
        Cancel();
    }
    return QSlider::event(event);
}

void Slider::keyPressEvent(QKeyEvent* event) {
    if (held_ && event->key() == Qt::Key_Escape) {
        Cancel();
        return;
    }
    if (SettleKeys(event->key())) {
        return;
    }
    const int before = value();
    QSlider::keyPressEvent(event);
    if (value() != before) {
        valueBeforeKeys_ = valueBeforeKeys_.value_or(before);
        emit Changed(value());
    }
}

// Enter and Escape after keys that changed the value; false for any other key, and where none did.
bool Slider::SettleKeys(int key) {
    const bool applies = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (held_ || !valueBeforeKeys_ || (!applies && key != Qt::Key_Escape)) {
        return false;
    }
    const int before = *std::exchange(valueBeforeKeys_, std::nullopt);
    if (applies) {
        emit Pressed();
        emit Released();
    } else {
        setValue(before);
        emit Cancelled();
    }
    return true;
}

void Slider::wheelEvent(QWheelEvent* event) {
    // Scrolling must not move a slider by accident: of those that follow the wheel at all, the focused one.
    if (!followsWheel_ || !hasFocus()) {
        event->ignore();
        return;
    }
    const int before = value();
    QSlider::wheelEvent(event);
    if (value() != before) {
        emit Changed(value());
    }
}

void Slider::enterEvent(QEnterEvent* event) {
    QSlider::enterEvent(event);
    update();
}

void Slider::leaveEvent(QEvent* event) {
    QSlider::leaveEvent(event);
    update();
}

void Slider::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette& colours = palette();
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const double middle = height() / 2.0 - (tickSpacing_ > 0 ? 2 : 0);
    const double thumb = XOf(value());
    const double origin = XOf(hasNeutral_ ? neutral_ : minimum());

    painter.setPen(Qt::NoPen);
    painter.setBrush(EdgeColour(colours));
    painter.drawRoundedRect(
        QRectF(kThumbRadius, middle - kTrackHeight / 2, width() - 2 * kThumbRadius, kTrackHeight),
        kTrackHeight / 2, kTrackHeight / 2);
    painter.setBrush(pending_ && !held_ ? QuietTextColour(colours)
                                        : colours.color(group, QPalette::Highlight));
    painter.drawRect(QRectF(QPointF(std::min(origin, thumb), middle - kTrackHeight / 2),
                            QPointF(std::max(origin, thumb), middle + kTrackHeight / 2)));
    if (tickSpacing_ > 0) {
        painter.setBrush(EdgeColour(colours));
        const double pixelsPerTick =
            (width() - 2 * kThumbRadius) * tickSpacing_ / std::max(1, maximum() - minimum());
        const int every =
            pixelsPerTick >= 4 ? tickSpacing_ : tickSpacing_ * static_cast<int>(4 / pixelsPerTick + 1);
        for (int tick = minimum(); tick <= maximum(); tick += every) {
            painter.drawRect(QRectF(std::round(XOf(tick)) - 0.5, middle + kTickTop, 1, kTickLength));
        }
    }
    const bool hot = isEnabled() && (underMouse() || held_);
    const double radius = held_ ? kThumbRadius : kThumbRadius - 1;
    painter.setBrush(colours.color(group, hot ? QPalette::BrightText : QPalette::Light));
    painter.setPen(
        QPen(colours.color(hasFocus() ? QPalette::Highlight : QPalette::Shadow), hasFocus() ? 1.5 : 1));
    painter.drawEllipse(QPointF(thumb, middle), radius, radius);
}

} // namespace pictorel
