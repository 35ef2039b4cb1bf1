// The whole pixels that a path covers, see PathRegion.h.
#include "picture/metafile/canvas/PathRegion.h"

#include <array>
#include <cmath>

namespace pictorel::metafile {
namespace {

// One side of a rectangle: what lies on its inner side is kept.
struct Side {
    bool vertical;
    double at;
    bool keepsGreater;

    double Distance(QPointF point) const { // above 0 inside
        const double distance = (vertical ? point.x() : point.y()) - at;
        return keepsGreater ? distance : -distance;
    }
};

// Sutherland and Hodgman, Reentrant Polygon Clipping, 1974: edges outside come to lie on the side.
QPolygonF CutAt(const QPolygonF& polygon, const Side& side) {
    QPolygonF cut;
    for (qsizetype i = 0; i < polygon.size(); ++i) {
        const QPointF from = polygon[i == 0 ? polygon.size() - 1 : i - 1];
        const QPointF to = polygon[i];
        const double fromDistance = side.Distance(from);
        const double toDistance = side.Distance(to);
        if ((fromDistance < 0) != (toDistance < 0)) {
            cut << from + (to - from) * (fromDistance / (fromDistance - toDistance));
        }
        if (toDistance >= 0) {
            cut << to;
        }
    }
    return cut;
}

bool IsUprightRectangle(const QPolygonF& polygon) {
    constexpr qsizetype kClosedRectangle = 5;
    if (polygon.size() != kClosedRectangle || polygon.first() != polygon.last()) {
        return false;
    }
    const bool startsAcross = polygon[0].y() == polygon[1].y();
    for (qsizetype i = 0; i + 1 < polygon.size(); ++i) {
        const QPointF side = polygon[i + 1] - polygon[i];
        if ((startsAcross == (i % 2 == 0) ? side.y() : side.x()) != 0) {
            return false;
        }
    }
    return true;
}

QRect WholePixels(const QRectF& rectangle) {
    const auto edge = [](double value) { return static_cast<int>(std::ceil(value - 0.5)); };
    return {QPoint(edge(rectangle.left()), edge(rectangle.top())),
            QPoint(edge(rectangle.right()) - 1, edge(rectangle.bottom()) - 1)};
}

} // namespace

QRegion RegionOfPath(const QPainterPath& path, const QRect& bounds) {
    QPolygonF polygon = path.toFillPolygon(); // subpaths joined by lines there and back, which cover nothing
    if (IsUprightRectangle(polygon)) {
        return QRegion(WholePixels(polygon.boundingRect()) & bounds);
    }
    const QRectF box(bounds);
    for (const Side& side : std::array{Side{true, box.left(), true}, Side{true, box.right(), false},
                                       Side{false, box.top(), true}, Side{false, box.bottom(), false}}) {
        polygon = CutAt(polygon, side);
    }
    return QRegion(polygon.toPolygon(), path.fillRule()) & bounds;
}

} // namespace pictorel::metafile
