// Areas whose colour runs from corner to corner, see Gradient.h.
#include "picture/metafile/canvas/Gradient.h"

#include <QLinearGradient>

#include <algorithm>
#include <cmath>

namespace pictorel::metafile {
namespace {

// Twice the area of the triangle, above 0 where the corners turn clockwise on the canvas.
double Cross(QPointF a, QPointF b, QPointF c) {
    return (b.x() - a.x()) * (c.y() - a.y()) - (b.y() - a.y()) * (c.x() - a.x());
}

QRgb Mixed(const std::array<GradientVertex, 3>& corners, const std::array<double, 3>& weights) {
    const auto channel = [&](int (*of)(QRgb)) {
        double sum = 0;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            sum += weights[i] * of(corners[i].colour);
        }
        return std::clamp(static_cast<int>(std::lround(sum)), 0, 255);
    };
    return qRgb(channel(qRed), channel(qGreen), channel(qBlue));
}

} // namespace

void FillGradient(DeviceContext& context, const GradientVertex& from, const GradientVertex& to,
                  bool downwards) {
    QPainterPath rectangle;
    rectangle.addRect(QRectF(from.point, to.point).normalized());
    const QPointF end =
        downwards ? QPointF(from.point.x(), to.point.y()) : QPointF(to.point.x(), from.point.y());
    QLinearGradient gradient(context.OnCanvas(from.point), context.OnCanvas(end));
    gradient.setColorAt(0, QColor::fromRgb(from.colour));
    gradient.setColorAt(1, QColor::fromRgb(to.colour));
    context.FillWith(context.OnCanvas(rectangle), gradient, kCopyPen);
}

void FillTriangle(DeviceContext& context, const std::array<GradientVertex, 3>& corners) {
    QPainterPath outline;
    outline.addPolygon(QPolygonF{corners[0].point, corners[1].point, corners[2].point});
    const QPainterPath mapped = context.OnCanvas(outline);
    if (!context.Canvas().WantsPixels()) {
        context.FillWith(mapped, Qt::black, kCopyPen);
        return;
    }
    const std::array at{context.OnCanvas(corners[0].point), context.OnCanvas(corners[1].point),
                        context.OnCanvas(corners[2].point)};
    const double whole = Cross(at[0], at[1], at[2]);
    const QRect box = mapped.boundingRect().toAlignedRect() & context.Canvas().Bounds();
    constexpr double kPerPixel = 30;
    context.Canvas().Spend(kPerPixel * box.width() * box.height());
    if (box.isEmpty() || whole == 0 || context.Canvas().IsExhausted()) {
        return;
    }
    QImage image(box.size(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return;
    }
    for (int y = 0; y < box.height(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < box.width(); ++x) {
            const QPointF point(box.x() + x + 0.5, box.y() + y + 0.5);
            const std::array weights{Cross(at[1], at[2], point) / whole, Cross(at[2], at[0], point) / whole,
                                     Cross(at[0], at[1], point) / whole};
            const bool isInside = *std::min_element(weights.begin(), weights.end()) >= 0;
            row[x] = isInside ? Mixed(corners, weights) : 0;
        }
    }
    context.PutImage(box.topLeft(), image);
}

} // namespace pictorel::metafile
