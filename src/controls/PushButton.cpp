// A push button, see PushButton.h.
#include "controls/PushButton.h"

#include "controls/SkinColours.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace pictorel {
namespace {

constexpr int kIconAboveCaption = 44; // pixels of height from which the picture stands above the caption
constexpr double kCornerRadius = 4;
constexpr double kDisabledOpacity = 0.6; // 3 : 1 for the skin's colours
constexpr int kGap = 6;                  // pixels between picture and caption

QSize ImageSize(const QIcon& image) {
    const auto sizes = image.availableSizes();
    return sizes.isEmpty() ? QSize() : sizes.first();
}

} // namespace

PushButton::PushButton(QWidget* parent) : QAbstractButton(parent), Control(static_cast<QWidget&>(*this)) {
    setFocusPolicy(Qt::TabFocus);
}

void PushButton::SetCaption(const QString& text) {
    setText(text);
}

void PushButton::SetImage(const QIcon& image) {
    image_ = image;
    update();
}

void PushButton::SetFlat(bool flat) {
    flat_ = flat;
    update();
}

void PushButton::SetHighlighted(bool highlighted) {
    highlighted_ = highlighted;
    update();
}

void PushButton::SetDecorative(bool decorative) {
    decorative_ = decorative;
    setFocusPolicy(decorative ? Qt::NoFocus : Qt::TabFocus);
    setAttribute(Qt::WA_TransparentForMouseEvents, decorative);
}

void PushButton::SetEnabled(bool enabled) {
    Control::SetEnabled(enabled);
    update(); // a decorative button inside a disabled group gets no change event of its own
}

QString PushButton::ShownToolTip() const {
    if (shortcutText_.isEmpty()) {
        return toolTip();
    }
    return tr("%1 (%2)").arg(toolTip().isEmpty() ? text() : toolTip(), shortcutText_);
}

bool PushButton::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), ShownToolTip(), this);
        return true;
    }
    return QAbstractButton::event(event);
}

QSize PushButton::sizeHint() const {
    const QSize picture = ImageSize(image_);
    return {fontMetrics().horizontalAdvance(text()) + picture.width() + 4 * kGap,
            std::max(fontMetrics().height(), picture.height()) + 2 * kGap};
}

void PushButton::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void PushButton::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

void PushButton::focusInEvent(QFocusEvent* event) {
    const auto reason = event->reason();
    if (reason != Qt::OtherFocusReason) { // the focus that comes back after a command is what it was
        focusedByKeyboard_ = reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason;
    }
    QAbstractButton::focusInEvent(event);
}

void PushButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void PushButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!decorative_) {
        PaintFrame(painter);
    }
    PaintContent(painter);
}

void PushButton::PaintFrame(QPainter& painter) const {
    const QPalette& colours = palette();
    const bool hot = LooksEnabled() && underMouse();
    const bool down = LooksEnabled() && (isDown() || isChecked());
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor face = colours.color(down ? QPalette::Dark : hot ? QPalette::Midlight : QPalette::Button);
    QColor edge = EdgeColour(colours);
    if (highlighted_) {
        face = colours.color(QPalette::Highlight);
        edge = face.lighter(125);
    } else if (flat_ && !hot && !down) {
        face = edge = Qt::transparent;
    } else if (!LooksEnabled()) {
        face.setAlphaF(0.4F);
        edge.setAlphaF(0.5F);
    }
    painter.setPen(edge);
    painter.setBrush(face);
    painter.drawRoundedRect(frame, kCornerRadius, kCornerRadius);
    if (hasFocus() && focusedByKeyboard_ && !highlighted_) {
        painter.setPen(QPen(colours.color(QPalette::Highlight), 1.5));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame.adjusted(1, 1, -1, -1), kCornerRadius - 1, kCornerRadius - 1);
    }
}

void PushButton::PaintContent(QPainter& painter) const {
    const QSize picture = ImageSize(image_);
    const bool above = !picture.isEmpty() && !text().isEmpty() && height() >= kIconAboveCaption;
    const int textHeight = fontMetrics().height();
    QRect textArea = rect();
    if (!picture.isEmpty()) {
        QPoint corner((width() - picture.width()) / 2, (height() - picture.height()) / 2);
        if (above) {
            const int free = height() - picture.height() - textHeight;
            corner.setY(free * 2 / 5);
            textArea = QRect(0, corner.y() + picture.height() + free / 6, width(), textHeight);
        } else if (!text().isEmpty()) {
            const int wanted = picture.width() + kGap + fontMetrics().horizontalAdvance(text());
            corner.setX((width() - wanted) / 2);
            textArea = QRect(corner.x() + picture.width() + kGap, 0, width(), height());
        }
        painter.setOpacity(LooksEnabled() ? 1.0 : kDisabledOpacity);
        // From the next larger drawing where pixels are no whole ones: reducing keeps edges that enlarging
        // blurs.
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawPixmap(QRect(corner, picture),
                           image_.pixmap(picture, std::ceil(devicePixelRatioF()), QIcon::Normal, QIcon::Off));
        painter.setOpacity(1.0);
    }
    if (!text().isEmpty()) {
        const auto group = LooksEnabled() ? QPalette::Active : QPalette::Disabled;
        painter.setPen(
            palette().color(group, highlighted_ ? QPalette::HighlightedText : QPalette::ButtonText));
        const int horizontal = picture.isEmpty() || above ? Qt::AlignHCenter : Qt::AlignLeft;
        painter.drawText(textArea, horizontal | Qt::AlignVCenter | Qt::TextHideMnemonic, text());
    }
}

} // namespace pictorel
