// The drawing state of a metafile being played: state and paths, see DeviceContext.h.
#include "picture/metafile/canvas/DeviceContext.h"

#include "picture/metafile/canvas/PaintingWork.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pictorel::metafile {
namespace {

constexpr std::size_t kMostSaved = 1024;

QPointF BoundedPoint(QPointF point) {
    const auto within = [](double value) {
        return std::isnan(value) ? 0.0 : std::clamp(value, -kFarthest, kFarthest);
    };
    return {within(point.x()), within(point.y())};
}

} // namespace

QPainterPath Bounded(const QPainterPath& onCanvas) {
    QPainterPath bounded = onCanvas;
    for (int i = 0; i < bounded.elementCount(); ++i) {
        const QPointF point = BoundedPoint(bounded.elementAt(i));
        bounded.setElementPositionAt(i, point.x(), point.y());
    }
    return bounded;
}

DeviceContext::DeviceContext(Surface& surface, const Placement& placement, const Mapping& mapping)
    : surface_(surface), placement_(placement), state_(mapping) {}

void DeviceContext::Save() {
    if (saved_.size() < kMostSaved) {
        saved_.push_back(state_);
    }
}

void DeviceContext::Restore(int level) {
    const auto depth = static_cast<std::int64_t>(saved_.size());
    const std::int64_t kept = level < 0 ? depth + level : std::int64_t{level} - 1;
    if (kept < 0 || kept >= depth) {
        return;
    }
    state_ = saved_[static_cast<std::size_t>(kept)];
    saved_.erase(saved_.begin() + kept, saved_.end());
    clipChanged_ = true;
}

void DeviceContext::Select(std::uint32_t slot) {
    const SharedObject object = objects_.At(slot);
    if (!object) {
        return;
    }
    // The pointers share the ownership of the object.
    if (const auto* const pen = std::get_if<Pen>(object.get())) {
        state_.pen = {object, pen};
    } else if (const auto* const brush = std::get_if<Brush>(object.get())) {
        state_.brush = {object, brush};
    } else if (const auto* const font = std::get_if<Font>(object.get())) {
        state_.font = {object, font};
    } else if (const auto* const palette = std::get_if<Palette>(object.get())) {
        state_.palette = {object, palette};
    }
}

QTransform DeviceContext::ToCanvas() const {
    return state_.mapping.ToDevice() * placement_.toCanvas;
}

QPainterPath DeviceContext::OnCanvas(const QPainterPath& path) const {
    return Bounded(ToCanvas().map(path));
}

QPointF DeviceContext::OnCanvas(QPointF point) const {
    return BoundedPoint(ToCanvas().map(point));
}

QPainterPath DeviceContext::DeviceOnCanvas(const QPainterPath& path) const {
    return Bounded(placement_.toCanvas.map(path));
}

double DeviceContext::UnitLength() const {
    const double area = std::abs(ToCanvas().determinant());
    return std::isfinite(area) ? std::min(std::sqrt(area), kFarthest) : 0;
}

QPointF DeviceContext::HalfUnit() const {
    const QTransform transform = ToCanvas();
    const auto half = [this](double x, double y) {
        const double length = std::hypot(x, y);
        return std::isfinite(length) ? std::min(length, placement_.pixel) / 2 : 0;
    };
    return {half(transform.m11(), transform.m21()), half(transform.m12(), transform.m22())};
}

QRectF DeviceContext::Inset(const QRectF& rectangle) const {
    const QTransform transform = ToCanvas();
    const auto inset = [this](double x, double y) {
        const double length = std::hypot(x, y);
        return length > 0 ? std::min(0.5, placement_.pixel / 2 / length) : 0;
    };
    double across = inset(transform.m11(), transform.m12());
    double down = inset(transform.m21(), transform.m22());
    if (state_.pen->insideFrame && state_.pen->visible) {
        across = std::max(across, state_.pen->width / 2);
        down = std::max(down, state_.pen->width / 2);
    }
    const QRectF whole = rectangle.normalized();
    across = std::min(across, whole.width() / 2);
    down = std::min(down, whole.height() / 2);
    return whole.adjusted(across, down, -across, -down);
}

void DeviceContext::Draw(const QPainterPath& shape, Parts parts) {
    const QPainterPath onCanvas = OnCanvas(shape);
    if (pathIsOpen_) {
        path_.addPath(onCanvas);
        return;
    }
    if (parts != Parts::Outline) {
        QPainterPath inside = onCanvas;
        inside.setFillRule(state_.fillRule);
        Fill(inside, *state_.brush);
    }
    if (parts != Parts::Inside) {
        const QPointF half = HalfUnit();
        Stroke(onCanvas.translated(half), *state_.pen);
    }
}

void DeviceContext::DrawShapes(const QPainterPath& inside, const QPainterPath& outline, Parts parts) {
    if (pathIsOpen_) {
        path_.addPath(OnCanvas(inside));
        return;
    }
    if (parts != Parts::Outline) {
        Fill(OnCanvas(inside), *state_.brush);
    }
    if (parts != Parts::Inside) {
        Stroke(OnCanvas(outline), *state_.pen);
    }
}

void DeviceContext::MoveTo(QPointF point) {
    state_.position = point;
    if (pathIsOpen_) {
        path_.moveTo(OnCanvas(point));
    }
}

void DeviceContext::LineTo(QPointF point) {
    QPainterPath line;
    line.moveTo(state_.position);
    line.lineTo(point);
    DrawOnwards(line);
}

void DeviceContext::DrawOnwards(const QPainterPath& path) {
    if (!pathIsOpen_) {
        Draw(path, Parts::Outline);
    } else if (path.elementCount() > 0) {
        const QPainterPath onCanvas = OnCanvas(path);
        const bool goesOn = path_.elementCount() > 0 && path_.currentPosition() == onCanvas.elementAt(0);
        goesOn ? path_.connectPath(onCanvas) : path_.addPath(onCanvas);
    }
    state_.position = path.currentPosition();
}

void DeviceContext::BeginPath() {
    path_ = QPainterPath();
    pathIsOpen_ = true;
    path_.moveTo(OnCanvas(state_.position));
}

void DeviceContext::AbortPath() {
    path_ = QPainterPath();
    pathIsOpen_ = false;
}

void DeviceContext::CloseFigure() {
    if (pathIsOpen_) {
        path_.closeSubpath();
    }
}

void DeviceContext::FlattenPath() {
    surface_.Spend(StrokeWork(path_, Qt::NoPen, surface_.Bounds()));
    if (surface_.IsExhausted()) {
        return;
    }
    QPainterPath flat;
    for (const QPolygonF& polygon : path_.toSubpathPolygons()) {
        flat.addPolygon(polygon);
    }
    path_ = flat;
}

void DeviceContext::WidenPath() {
    const QPen pen = PaintPen(*state_.pen);
    surface_.Spend(StrokeWork(path_, pen, surface_.Bounds()));
    if (surface_.IsExhausted()) {
        return;
    }
    path_ = QPainterPathStroker(pen).createStroke(path_);
    path_.setFillRule(Qt::WindingFill);
}

QPainterPath DeviceContext::TakePath() {
    pathIsOpen_ = false;
    return std::exchange(path_, {});
}

void DeviceContext::DrawPath(Parts parts) {
    QPainterPath path = TakePath();
    if (parts != Parts::Outline) {
        path.setFillRule(state_.fillRule);
        Fill(path, *state_.brush);
    }
    if (parts != Parts::Inside) {
        Stroke(path.translated(HalfUnit()), *state_.pen);
    }
}

} // namespace pictorel::metafile
