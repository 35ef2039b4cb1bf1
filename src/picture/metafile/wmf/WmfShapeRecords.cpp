// Records of Windows metafiles that draw lines and shapes.
#include "picture/metafile/canvas/Shapes.h"
#include "picture/metafile/wmf/WmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

QRectF ReversedBox(const Fields& f, std::size_t at) { // bottom, right, top, left
    return {ReversedPoint(f, at + 4), ReversedPoint(f, at)};
}

QPolygonF PointsAt(const Fields& f, std::size_t at, std::uint32_t claimed) {
    constexpr std::size_t kPointBytes = 4;
    QPolygonF points;
    for (std::size_t i = 0; i < f.CountOf(claimed, at, kPointBytes); ++i) {
        points << f.Point16(at + i * kPointBytes);
    }
    return points;
}

ArcFields ArcAt(const Fields& f) { // the ray to the end comes first
    return {ReversedBox(f, 8), ReversedPoint(f, 4), ReversedPoint(f, 0)};
}

void LineTo(DeviceContext& dc, const Fields& f) {
    dc.LineTo(ReversedPoint(f, 0));
}

void SetPixel(DeviceContext& dc, const Fields& f) {
    dc.SetPixel(ReversedPoint(f, 4), f.Colour(0));
}

void Polygon(DeviceContext& dc, const Fields& f) {
    QPainterPath path;
    path.addPolygon(PointsAt(f, 2, f.Word(0)));
    path.closeSubpath();
    dc.Draw(path, Parts::Both);
}

void Polyline(DeviceContext& dc, const Fields& f) {
    QPainterPath path;
    path.addPolygon(PointsAt(f, 2, f.Word(0)));
    dc.Draw(path, Parts::Outline);
}

void PolyPolygon(DeviceContext& dc, const Fields& f) {
    const std::size_t polygons = f.CountOf(f.Word(0), 2, 2);
    QPainterPath path;
    std::size_t at = 2 + 2 * polygons;
    for (std::size_t i = 0; i < polygons; ++i) {
        const QPolygonF points = PointsAt(f, at, f.Word(2 + 2 * i));
        at += static_cast<std::size_t>(points.size()) * 4;
        if (!points.isEmpty()) {
            path.addPolygon(points);
            path.closeSubpath();
        }
    }
    dc.Draw(path, Parts::Both);
}

void Rectangle(DeviceContext& dc, const Fields& f) {
    DrawRectangle(dc, ReversedBox(f, 0));
}

void Ellipse(DeviceContext& dc, const Fields& f) {
    DrawEllipse(dc, ReversedBox(f, 0));
}

void RoundRect(DeviceContext& dc, const Fields& f) {
    DrawRoundRectangle(dc, ReversedBox(f, 4), {double(f.Short(2)), double(f.Short(0))});
}

void Arc(DeviceContext& dc, const Fields& f) {
    DrawArc(dc, ArcAt(f), ArcKind::Arc);
}

void Chord(DeviceContext& dc, const Fields& f) {
    DrawArc(dc, ArcAt(f), ArcKind::Chord);
}

void Pie(DeviceContext& dc, const Fields& f) {
    DrawArc(dc, ArcAt(f), ArcKind::Pie);
}

constexpr std::array kRows{
    WmfRow{WmfType::LineTo, 4, RecordKind::Drawing, LineTo},
    WmfRow{WmfType::SetPixel, 8, RecordKind::Drawing, SetPixel},
    WmfRow{WmfType::Polygon, 2, RecordKind::Drawing, Polygon},
    WmfRow{WmfType::Polyline, 2, RecordKind::Drawing, Polyline},
    WmfRow{WmfType::PolyPolygon, 2, RecordKind::Drawing, PolyPolygon},
    WmfRow{WmfType::Rectangle, 8, RecordKind::Drawing, Rectangle},
    WmfRow{WmfType::Ellipse, 8, RecordKind::Drawing, Ellipse},
    WmfRow{WmfType::RoundRect, 12, RecordKind::Drawing, RoundRect},
    WmfRow{WmfType::Arc, 16, RecordKind::Drawing, Arc},
    WmfRow{WmfType::Chord, 16, RecordKind::Drawing, Chord},
    WmfRow{WmfType::Pie, 16, RecordKind::Drawing, Pie},
};

} // namespace

std::span<const WmfRow> WmfShapeRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
