// Records of enhanced metafiles that draw through many points, of 32 and of 16 bits a coordinate.
#include "picture/metafile/emf/EmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

struct Wide {
    static constexpr std::size_t kBytes = 8;
    static QPointF At(const Fields& f, std::size_t at) { return f.Point32(at); }
};
struct Narrow {
    static constexpr std::size_t kBytes = 4;
    static QPointF At(const Fields& f, std::size_t at) { return f.Point16(at); }
};

constexpr std::size_t kCount = 24;
constexpr std::size_t kPoints = 28;

template <class Size>
QPolygonF PointsAt(const Fields& f, std::size_t at, std::uint32_t claimed) {
    QPolygonF points;
    const std::size_t count = f.CountOf(claimed, at, Size::kBytes);
    points.reserve(static_cast<qsizetype>(count));
    for (std::size_t i = 0; i < count; ++i) {
        points << Size::At(f, at + i * Size::kBytes);
    }
    return points;
}

template <class Size>
QPolygonF Points(const Fields& f) {
    return PointsAt<Size>(f, kPoints, f.UInt(kCount));
}

// Curves through every third point from `first` on; what is left over is not drawn.
void AddCurves(QPainterPath& path, const QPolygonF& points, qsizetype first) {
    for (qsizetype i = first; i + 2 < points.size(); i += 3) {
        path.cubicTo(points[i], points[i + 1], points[i + 2]);
    }
}

QPainterPath From(QPointF start) {
    QPainterPath path;
    path.moveTo(start);
    return path;
}

template <class Size>
void Polygon(DeviceContext& dc, const Fields& f) {
    QPainterPath path;
    path.addPolygon(Points<Size>(f));
    path.closeSubpath();
    dc.Draw(path, Parts::Both);
}

template <class Size>
void Polyline(DeviceContext& dc, const Fields& f) {
    QPainterPath path;
    path.addPolygon(Points<Size>(f));
    dc.Draw(path, Parts::Outline);
}

template <class Size>
void PolyBezier(DeviceContext& dc, const Fields& f) {
    const QPolygonF points = Points<Size>(f);
    if (!points.isEmpty()) {
        QPainterPath path = From(points[0]);
        AddCurves(path, points, 1);
        dc.Draw(path, Parts::Outline);
    }
}

template <class Size>
void PolylineTo(DeviceContext& dc, const Fields& f) {
    QPainterPath path = From(dc.State().position);
    for (const QPointF& point : Points<Size>(f)) {
        path.lineTo(point);
    }
    dc.DrawOnwards(path);
}

template <class Size>
void PolyBezierTo(DeviceContext& dc, const Fields& f) {
    QPainterPath path = From(dc.State().position);
    AddCurves(path, Points<Size>(f), 0);
    dc.DrawOnwards(path);
}

// Several runs of points: their counts come first.
template <class Size>
void PolyPoly(DeviceContext& dc, const Fields& f, Parts parts) {
    constexpr std::size_t kCounts = 32;
    const std::size_t runs = f.CountOf(f.UInt(kCount), kCounts, 4);
    QPainterPath path;
    std::size_t at = kCounts + 4 * runs;
    for (std::size_t i = 0; i < runs; ++i) {
        const QPolygonF points = PointsAt<Size>(f, at, f.UInt(kCounts + 4 * i));
        at += static_cast<std::size_t>(points.size()) * Size::kBytes;
        path.addPolygon(points);
        if (parts == Parts::Both && !points.isEmpty()) {
            path.closeSubpath();
        }
    }
    dc.Draw(path, parts);
}

template <class Size>
void PolyPolygon(DeviceContext& dc, const Fields& f) {
    PolyPoly<Size>(dc, f, Parts::Both);
}

template <class Size>
void PolyPolyline(DeviceContext& dc, const Fields& f) {
    PolyPoly<Size>(dc, f, Parts::Outline);
}

// A type for each point stands behind the points: move, line or curve, and whether it closes the figure.
template <class Size>
void PolyDraw(DeviceContext& dc, const Fields& f) {
    constexpr unsigned kCloses = 1;
    constexpr unsigned kLine = 2;
    constexpr unsigned kCurve = 4;
    constexpr unsigned kMove = 6;
    const QPolygonF points = Points<Size>(f);
    const std::size_t types = kPoints + static_cast<std::size_t>(points.size()) * Size::kBytes;
    QPainterPath path = From(dc.State().position);
    for (qsizetype i = 0; i < points.size(); ++i) {
        const unsigned type = f.Byte(types + static_cast<std::size_t>(i));
        if ((type & ~kCloses) == kMove) {
            path.moveTo(points[i]);
        } else if ((type & ~kCloses) == kLine) {
            path.lineTo(points[i]);
        } else if ((type & ~kCloses) == kCurve && i + 2 < points.size()) {
            path.cubicTo(points[i], points[i + 1], points[i + 2]);
            i += 2;
        }
        if ((f.Byte(types + static_cast<std::size_t>(i)) & kCloses) != 0) {
            path.closeSubpath();
        }
    }
    dc.DrawOnwards(path);
}

constexpr std::array kRows{
    EmfRow{EmfType::PolyBezier, 28, RecordKind::Drawing, PolyBezier<Wide>},
    EmfRow{EmfType::Polygon, 28, RecordKind::Drawing, Polygon<Wide>},
    EmfRow{EmfType::Polyline, 28, RecordKind::Drawing, Polyline<Wide>},
    EmfRow{EmfType::PolyBezierTo, 28, RecordKind::Drawing, PolyBezierTo<Wide>},
    EmfRow{EmfType::PolylineTo, 28, RecordKind::Drawing, PolylineTo<Wide>},
    EmfRow{EmfType::PolyPolyline, 32, RecordKind::Drawing, PolyPolyline<Wide>},
    EmfRow{EmfType::PolyPolygon, 32, RecordKind::Drawing, PolyPolygon<Wide>},
    EmfRow{EmfType::PolyDraw, 28, RecordKind::Drawing, PolyDraw<Wide>},
    EmfRow{EmfType::PolyBezier16, 28, RecordKind::Drawing, PolyBezier<Narrow>},
    EmfRow{EmfType::Polygon16, 28, RecordKind::Drawing, Polygon<Narrow>},
    EmfRow{EmfType::Polyline16, 28, RecordKind::Drawing, Polyline<Narrow>},
    EmfRow{EmfType::PolyBezierTo16, 28, RecordKind::Drawing, PolyBezierTo<Narrow>},
    EmfRow{EmfType::PolylineTo16, 28, RecordKind::Drawing, PolylineTo<Narrow>},
    EmfRow{EmfType::PolyPolyline16, 32, RecordKind::Drawing, PolyPolyline<Narrow>},
    EmfRow{EmfType::PolyPolygon16, 32, RecordKind::Drawing, PolyPolygon<Narrow>},
    EmfRow{EmfType::PolyDraw16, 28, RecordKind::Drawing, PolyDraw<Narrow>},
};

} // namespace

std::span<const EmfRow> EmfPolyRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
