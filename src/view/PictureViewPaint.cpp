// How the picture view paints itself, see PictureView.h.
#include "view/PictureView.h"

#include <QFontInfo>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <exception>

namespace pictorel {
namespace {

QColor ColourOf(ColourValue colour) {
    return {static_cast<int>(colour & 0xff), static_cast<int>(colour >> 8 & 0xff),
            static_cast<int>(colour >> 16 & 0xff)};
}

} // namespace

void PictureView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    ShowDragCursor();
}

// All device pixels that the view touches within its border, also those that it covers in part.
QSize PictureView::FrameSize() const {
    const int inset = 2 * BorderWidth();
    return {std::max(1, static_cast<int>(std::ceil(width() * devicePixelRatioF())) - inset),
            std::max(1, static_cast<int>(std::ceil(height() * devicePixelRatioF())) - inset)};
}

void PictureView::RenewFrame() {
    const ViewScene wanted{Across(), Down(), smooth_, background_};
    const QSize size = FrameSize();
    if (!frameStale_ && frame_.size() == size && frameScene_ == wanted) {
        return;
    }
    if (frame_.size() != size) {
        frame_ = QImage(size, QImage::Format_RGB32);
    }
    if (frame_.isNull()) {
        return; // no memory for it: the next paint event tries again
    }
    const Canvas canvas{frame_.bits(), frame_.bytesPerLine(), size.width(), size.height()};
    frameScene_ = wanted;
    frameStale_ = !Draw(wanted, canvas);
    if (frameStale_) {
        // Too little memory for the halved copies: a coarse picture is better than none, until the next
        // event.
        ViewScene coarse = wanted;
        coarse.smooth = false;
        if (!Draw(coarse, canvas)) {
            frame_.fill(ColourOf(background_));
        }
    }
}

bool PictureView::Draw(const ViewScene& scene, const Canvas& canvas) {
    try {
        DrawScene(*pyramid_, scene, canvas);
        return true;
    } catch (const std::exception&) {
        return false; // nothing may leave a paint event
    }
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
    if (redraw_) {
        RenewFrame();
    }
    QPainter painter(this);
    // In device pixels, which Qt copies as they are.
    const double unit = 1.0 / devicePixelRatioF();
    painter.scale(unit, unit);
    const int border = BorderWidth();
    const QSize size = FrameSize();
    if (frame_.size() != size) {
        painter.fillRect(QRect(QPoint(border, border), size), ColourOf(background_));
    }
    painter.drawImage(QPoint(border, border), frame_);
    if (border > 0) {
        DrawBorder(painter);
    }
    painter.resetTransform();
    if (Picture().IsEmpty()) {
        DrawHint(painter);
    }
}

void PictureView::DrawBorder(QPainter& painter) const {
    const int border = BorderWidth();
    const int across = static_cast<int>(std::ceil(width() * devicePixelRatioF()));
    const int down = static_cast<int>(std::ceil(height() * devicePixelRatioF()));
    const QColor colour = Muted();
    painter.fillRect(0, 0, across, border, colour);
    painter.fillRect(0, down - border, across, border, colour);
    painter.fillRect(0, 0, border, down, colour);
    painter.fillRect(across - border, 0, border, down, colour);
}

void PictureView::DrawHint(QPainter& painter) const {
    QFont large = font();
    large.setPointSizeF(1.2 * QFontInfo(large).pointSizeF());
    painter.setFont(large);
    painter.setPen(Muted());
    constexpr int kMargin = 16;
    painter.drawText(rect().adjusted(kMargin, kMargin, -kMargin, -kMargin),
                     Qt::AlignCenter | Qt::TextWordWrap, hint_);
}

// Half-way between the background and the black or white that stands out from it.
QColor PictureView::Muted() const {
    const QColor background = ColourOf(background_);
    const int contrast = qGray(background.rgb()) < 128 ? 255 : 0;
    const auto mix = [contrast](int component) { return (component + contrast) / 2; };
    return {mix(background.red()), mix(background.green()), mix(background.blue())};
}

} // namespace pictorel
