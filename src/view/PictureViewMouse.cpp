// What the person at the picture view does with wheel and mouse, see PictureView.h.
#include "view/PictureView.h"
#include "view/ZoomLadder.h"

#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace pictorel {
namespace {

constexpr double kSameZoom = 1e-9;

} // namespace

void PictureView::MoveTo(double zoom, double centreX, double centreY) {
    ViewAxis across = Across();
    ViewAxis down = Down();
    across.zoom = down.zoom = zoom;
    across.centre = centreX;
    down.centre = centreY;
    centreX = across.CentreInside();
    centreY = down.CentreInside();
    if (zoom == zoom_ && centreX == centreX_ && centreY == centreY_) {
        return;
    }
    zoom_ = zoom;
    centreX_ = centreX;
    centreY_ = centreY;
    ViewChanged();
    if (viewChanged_) {
        viewChanged_();
    }
}

void PictureView::ZoomAbout(const QPointF& device, double zoom) {
    MoveTo(zoom, Across().CentreKeeping(device.x(), zoom), Down().CentreKeeping(device.y(), zoom));
    if (drag_.active) {
        BeginDrag(device);
    }
}

// A whole notch is a step of the zoom ladder; what finer wheels and touchpads send counts in proportion, and
// stops once at 100 % on its way.
void PictureView::wheelEvent(QWheelEvent* event) {
    constexpr int kNotch = QWheelEvent::DefaultDeltasPerStep;
    constexpr double kNotchFactor = 1.25;
    const int turn = event->angleDelta().y();
    if (Picture().IsEmpty() || turn == 0) {
        event->ignore();
        return;
    }
    event->accept();
    double zoom = zoom_;
    if (turn % kNotch == 0) {
        for (int notch = 0; notch < std::abs(turn) / kNotch; ++notch) {
            zoom = turn > 0 ? RungAbove(zoom) : RungBelow(zoom);
        }
    } else {
        zoom *= std::pow(kNotchFactor, static_cast<double>(turn) / kNotch);
        if ((zoom_ < 1.0 && zoom > 1.0) || (zoom_ > 1.0 && zoom < 1.0)) {
            zoom = 1.0;
        }
        // A zoom from outside the person's range is left alone, or comes back into it.
        zoom = turn > 0 ? std::max(zoom_, std::min(zoom, kLargestZoom))
                        : std::min(zoom_, std::max(zoom, kSmallestZoom));
    }
    ZoomAbout(DevicePoint(event->position()), zoom);
}

void PictureView::BeginDrag(const QPointF& device) {
    drag_ = {true, device, centreX_, centreY_};
}

void PictureView::mousePressEvent(QMouseEvent* event) {
    const bool movable = Across().PictureExceedsView() || Down().PictureExceedsView();
    if (event->button() != Qt::LeftButton || !movable) {
        event->ignore();
        return;
    }
    BeginDrag(DevicePoint(event->position()));
    ShowDragCursor();
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        drag_.active = false; // released where the view was not told
    }
    if (!drag_.active) {
        event->ignore();
        return;
    }
    const QPointF way = (DevicePoint(event->position()) - drag_.pointer) / zoom_;
    MoveTo(zoom_, drag_.centreX - way.x(), drag_.centreY - way.y());
}

void PictureView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    drag_.active = false;
    ShowDragCursor();
}

void PictureView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || Picture().IsEmpty()) {
        event->ignore();
        return;
    }
    const bool actualSize = std::abs(zoom_ - 1.0) < kSameZoom;
    ZoomAbout(DevicePoint(event->position()), actualSize ? FitZoom(Across(), Down()) : 1.0);
}

void PictureView::ShowDragCursor() {
    if (drag_.active) {
        setCursor(Qt::ClosedHandCursor);
    } else if (Across().PictureExceedsView() || Down().PictureExceedsView()) {
        setCursor(Qt::OpenHandCursor);
    } else {
        unsetCursor();
    }
}

} // namespace pictorel
