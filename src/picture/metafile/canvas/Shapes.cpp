// Shapes that records name by the rectangle around them, see Shapes.h.
#include "picture/metafile/canvas/Shapes.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace pictorel::metafile {
namespace {

constexpr double kFullTurn = 360;

// Degrees counter-clockwise as seen with y downwards, on the ellipse stretched to a circle.
double AngleOf(const QRectF& box, QPointF point) {
    const QPointF arm = point - box.center();
    return std::atan2(-arm.y() * box.width(), arm.x() * box.height()) * 180 / std::numbers::pi;
}

// Directions are those on paper, so an axis turned round turns them too.
double Sweep(const DeviceContext& context, double start, double end) {
    const bool clockwise = context.State().arcDirection == ArcDirection::Clockwise;
    const bool flipped = context.State().mapping.PageToDevice().determinant() < 0;
    const double sweep = end - start;
    if (clockwise != flipped) {
        return sweep >= 0 ? sweep - kFullTurn : sweep;
    }
    return sweep <= 0 ? sweep + kFullTurn : sweep;
}

QPainterPath ArcPath(const QRectF& box, double start, double sweep) {
    QPainterPath path;
    path.arcMoveTo(box, start);
    path.arcTo(box, start, sweep);
    return path;
}

} // namespace

void DrawRectangle(DeviceContext& context, const QRectF& box) {
    context.DrawInRectangle(box.normalized(), Parts::Both, [](const QRectF& inside) {
        QPainterPath path;
        path.addRect(inside);
        return path;
    });
}

void DrawEllipse(DeviceContext& context, const QRectF& box) {
    context.DrawInRectangle(box.normalized(), Parts::Both, [](const QRectF& inside) {
        QPainterPath path;
        path.addEllipse(inside);
        return path;
    });
}

void DrawRoundRectangle(DeviceContext& context, const QRectF& box, QSizeF corner) {
    context.DrawInRectangle(box.normalized(), Parts::Both, [corner](const QRectF& inside) {
        QPainterPath path;
        path.addRoundedRect(inside, std::min(std::abs(corner.width()), inside.width()) / 2,
                            std::min(std::abs(corner.height()), inside.height()) / 2);
        return path;
    });
}

void DrawArc(DeviceContext& context, const ArcFields& arc, ArcKind kind) {
    const QRectF box = arc.box.normalized();
    const double start = AngleOf(box, arc.from);
    const double sweep = Sweep(context, start, AngleOf(box, arc.to));
    const Parts parts = kind == ArcKind::Arc ? Parts::Outline : Parts::Both;
    context.DrawInRectangle(box, parts, [=](const QRectF& inside) {
        QPainterPath path = ArcPath(inside, start, sweep);
        if (kind == ArcKind::Pie) {
            path.lineTo(inside.center());
        }
        if (kind != ArcKind::Arc) {
            path.closeSubpath();
        }
        return path;
    });
}

void DrawArcOnwards(DeviceContext& context, const ArcFields& arc) {
    const QRectF box = arc.box.normalized();
    const double start = AngleOf(box, arc.from);
    QPainterPath path;
    path.moveTo(context.State().position);
    path.arcTo(box, start, Sweep(context, start, AngleOf(box, arc.to)));
    context.DrawOnwards(path);
}

void DrawAngleArc(DeviceContext& context, QPointF centre, double radius, double start, double sweep) {
    const QPointF arm(std::abs(radius), std::abs(radius));
    QPainterPath path;
    path.moveTo(context.State().position);
    path.arcTo(QRectF(centre - arm, centre + arm), std::fmod(start, kFullTurn),
               std::clamp(sweep, -kFullTurn, kFullTurn));
    context.DrawOnwards(path);
}

} // namespace pictorel::metafile
