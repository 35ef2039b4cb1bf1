// The widget that shows one picture, see PictureView.h.
#include "imaging/desktop/PictureView.h"

#include "imaging/ForEachBand.h"
#include "imaging/ImagingError.h"
#include "imaging/desktop/ZoomLadder.h"

#include <QFontInfo>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <exception>

namespace pictorel {
namespace {

constexpr int kLargestQuality = 4;
constexpr double kSameZoom = 1e-9; // relative

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

QColor ColourOf(ColourValue colour) {
    return {static_cast<int>(colour & 0xff), static_cast<int>(colour >> 8 & 0xff),
            static_cast<int>(colour >> 16 & 0xff)};
}

PixelArray Crop(const PixelArray& picture, Span across, Span down) {
    PixelArray crop = PixelArray::Like(picture, across.Length(), down.Length());
    std::uint8_t* const rows = crop.WritableRows();
    ForEachBand(crop.Height(), 2 * crop.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y)
            std::copy_n(picture.Row(down.begin + y) + std::ptrdiff_t{4} * across.begin, crop.RowBytes(),
                        rows + y * crop.Stride());
    });
    return crop;
}

// `picture` with the alpha of `plane`, of the same size.
PixelArray WithAlphaOf(PixelArray picture, const PixelArray& plane) {
    std::uint8_t* const rows = picture.WritableRows();
    ForEachBand(picture.Height(), 2 * picture.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const std::uint8_t* const source = plane.Row(y);
            std::uint8_t* const row = rows + y * picture.Stride();
            for (int x = 0; x < picture.Width(); ++x)
                row[4 * x + 3] = plane.HasAlpha() ? source[4 * x + 3] : 255;
        }
    });
    picture.SetHasAlpha(plane.HasAlpha());
    return picture;
}

} // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent), hint_(tr("Open a picture, or drop one here")) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Picture"));
    setAccessibleDescription(hint_);
}

// The interface

void PictureView::Show(const PixelArray& picture) {
    const int widthBefore = Picture().Width();
    const int heightBefore = Picture().Height();
    pyramid_ = PicturePyramid(picture);
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

void PictureView::ShowSecondPlane(const PixelArray& plane) {
    if (plane.Width() != Picture().Width() || plane.Height() != Picture().Height()) {
        throw ImagingError(ImagingFailure::InvalidValue,
                           "The transparency is not of the size of the picture that it belongs to.");
    }
    const bool sameAlpha = plane.SharesPixelsWith(Picture()) && plane.HasAlpha() == Picture().HasAlpha();
    if (sameAlpha || plane.IsEmpty()) {
        return;
    }
    pyramid_ = PicturePyramid(WithAlphaOf(Picture(), plane));
    frameStale_ = true;
    ViewChanged();
}

PixelArray PictureView::CopyAsShown() const {
    const Span across = Across().Visible();
    const Span down = Down().Visible();
    if (across.Length() == Picture().Width() && down.Length() == Picture().Height()) {
        return Picture();
    }
    return Crop(Picture(), across, down);
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

// What the person at the view does

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
        for (int notch = 0; notch < std::abs(turn) / kNotch; ++notch)
            zoom = turn > 0 ? RungAbove(zoom) : RungBelow(zoom);
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

// Painting

void PictureView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    ShowDragCursor();
}

void PictureView::RenewFrame() {
    const ViewScene scene{Across(), Down(), smooth_, background_};
    const int inset = 2 * BorderWidth();
    const QSize size(std::max(1, static_cast<int>(std::ceil(width() * devicePixelRatioF())) - inset),
                     std::max(1, static_cast<int>(std::ceil(height() * devicePixelRatioF())) - inset));
    if (!frameStale_ && frame_.size() == size && frameScene_ == scene) {
        return;
    }
    if (frame_.size() != size) {
        frame_ = QImage(size, QImage::Format_RGB32);
    }
    if (frame_.isNull()) {
        return; // no memory for it: the next paint event tries again
    }
    const Canvas canvas{frame_.bits(), frame_.bytesPerLine(), size.width(), size.height()};
    try {
        DrawScene(pyramid_, scene, canvas);
        frameScene_ = scene;
        frameStale_ = false;
    } catch (const std::exception&) {
        // Too little memory for the halved copies. A coarse picture is better than none.
        ViewScene coarse = scene;
        coarse.smooth = false;
        DrawScene(pyramid_, coarse, canvas);
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
    if (frame_.isNull()) {
        painter.fillRect(QRectF(0, 0, width() / unit, height() / unit), ColourOf(background_));
    } else {
        painter.drawImage(QPoint(border, border), frame_);
    }
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
