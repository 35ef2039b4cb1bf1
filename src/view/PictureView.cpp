// The widget that shows one picture, see PictureView.h.
#include "view/PictureView.h"

#include "picture/ImagingError.h"
#include "view/ZoomLadder.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <utility>

namespace pictorel {
namespace {

constexpr int kLargestQuality = 4;

double CheckedNumber(double number, const char* name) {
    if (!std::isfinite(number)) {
        throw ImagingError(ImagingFailure::InvalidValue,
                           std::string("The view's ") + name + " is not a number.");
    }
    return number;
}

// The relative place of the centre in a picture of another size.
double CarriedCentre(double centre, int before, int after) {
    if (before <= 0) {
        return 0.5 * after;
    }
    return before == after ? centre : std::clamp(centre / before, 0.0, 1.0) * after;
}

} // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent), hint_(tr("Open a picture to begin")) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Picture"));
    setAccessibleDescription(hint_);
}

// The interface

void PictureView::Show(const PixelArray& picture) {
    const int widthBefore = Picture().Width();
    const int heightBefore = Picture().Height();
    pyramid_ = pyramids_->Of(picture);
    if (widthBefore != picture.Width() || heightBefore != picture.Height()) {
        drag_.active = false;
    }
    if (!picture.IsEmpty()) {
        centreX_ = CarriedCentre(centreX_, widthBefore, picture.Width());
        centreY_ = CarriedCentre(centreY_, heightBefore, picture.Height());
    }
    frameStale_ = true;
    setAccessibleDescription(
        picture.IsEmpty() ? hint_ : tr("%1 x %2 pixels").arg(picture.Width()).arg(picture.Height()));
    ViewChanged();
}

ShownPart PictureView::PartShown() const {
    const Span across = Across().Visible();
    const Span down = Down().Visible();
    return {zoom_, across.begin, down.begin, across.Length(), down.Length()};
}

void PictureView::SetRedraw(bool on) {
    redraw_ = on;
    if (on) {
        update();
    }
}

void PictureView::SetBorderStyle(int style) {
    if (style != 0 && style != 1) {
        throw ImagingError(ImagingFailure::InvalidValue, "The view's border is 0 (none) or 1 (a thin line).");
    }
    borderStyle_ = style;
    ViewChanged();
}

void PictureView::SetScalingQuality(int quality) {
    if (quality < 0 || quality > kLargestQuality) {
        throw ImagingError(ImagingFailure::InvalidValue, "The view's scaling quality is 0 to 4.");
    }
    smooth_ = quality > 0;
    ViewChanged();
}

void PictureView::SetBackgroundColour(ColourValue colour) {
    background_ = colour & 0xffffff;
    ViewChanged();
}

void PictureView::SetZoom(double zoom) {
    if (CheckedNumber(zoom, "zoom") <= 0.0) {
        throw ImagingError(ImagingFailure::InvalidValue, "The view's zoom must be above 0.");
    }
    zoom_ = zoom;
    ViewChanged();
}

void PictureView::SetCentreX(double x) {
    centreX_ = CheckedNumber(x, "centre");
    ViewChanged();
}

void PictureView::SetCentreY(double y) {
    centreY_ = CheckedNumber(y, "centre");
    ViewChanged();
}

void PictureView::ZoomIn() {
    SetZoom(RungAbove(zoom_));
}

void PictureView::ZoomOut() {
    SetZoom(RungBelow(zoom_));
}

void PictureView::Fit() {
    FitUpTo(kLargestFit);
}

void PictureView::FitNew() {
    FitUpTo(1.0);
}

void PictureView::SetViewChangedHandler(std::function<void()> handler) {
    viewChanged_ = std::move(handler);
}

void PictureView::SetHint(const QString& hint) {
    hint_ = hint;
    if (Picture().IsEmpty()) {
        setAccessibleDescription(hint);
        update();
    }
}

QSize PictureView::sizeHint() const {
    return {640, 480};
}

// Geometry, in device pixels within the border. Where a fractional device pixel ratio cuts the last pixel, it
// is drawn but does not count as view, so that a fitted picture is never cut.

int PictureView::BorderWidth() const {
    return borderStyle_ == 0 ? 0 : std::max(1, static_cast<int>(std::lround(devicePixelRatioF())));
}

ViewAxis PictureView::Across() const {
    const int view = static_cast<int>(std::floor(width() * devicePixelRatioF())) - 2 * BorderWidth();
    return {std::max(view, 1), Picture().Width(), zoom_, centreX_};
}

ViewAxis PictureView::Down() const {
    const int view = static_cast<int>(std::floor(height() * devicePixelRatioF())) - 2 * BorderWidth();
    return {std::max(view, 1), Picture().Height(), zoom_, centreY_};
}

QPointF PictureView::DevicePoint(const QPointF& position) const {
    return position * devicePixelRatioF() - QPointF(BorderWidth(), BorderWidth());
}

void PictureView::FitUpTo(double largest) {
    if (Picture().IsEmpty()) {
        return;
    }
    zoom_ = std::min(FitZoom(Across(), Down()), largest);
    centreX_ = 0.5 * Picture().Width();
    centreY_ = 0.5 * Picture().Height();
    ViewChanged();
}

void PictureView::ViewChanged() {
    ShowDragCursor();
    if (redraw_) {
        update();
    }
}

} // namespace pictorel
