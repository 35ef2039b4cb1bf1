// Records of enhanced metafiles that draw shapes given by a rectangle, single lines and pixels.
#include "picture/metafile/canvas/Shapes.h"
#include "picture/metafile/emf/EmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

constexpr std::size_t kBox = 8;

ArcFields ArcAt(const Fields& f) {
    return {f.Rect32(kBox), f.Point32(24), f.Point32(32)};
}

void Rectangle(DeviceContext& dc, const Fields& f) {
    DrawRectangle(dc, f.Rect32(kBox));
}

void Ellipse(DeviceContext& dc, const Fields& f) {
    DrawEllipse(dc, f.Rect32(kBox));
}

void RoundRect(DeviceContext& dc, const Fields& f) {
    DrawRoundRectangle(dc, f.Rect32(kBox), {double(f.Int(24)), double(f.Int(28))});
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

void ArcTo(DeviceContext& dc, const Fields& f) {
    DrawArcOnwards(dc, ArcAt(f));
}

void AngleArc(DeviceContext& dc, const Fields& f) {
    DrawAngleArc(dc, f.Point32(8), f.UInt(16), f.Real(20), f.Real(24));
}

void LineTo(DeviceContext& dc, const Fields& f) {
    dc.LineTo(f.Point32(8));
}

void SetPixel(DeviceContext& dc, const Fields& f) {
    dc.SetPixel(f.Point32(8), f.Colour(16));
}

constexpr std::array kRows{
    EmfRow{EmfType::Rectangle, 24, RecordKind::Drawing, Rectangle},
    EmfRow{EmfType::Ellipse, 24, RecordKind::Drawing, Ellipse},
    EmfRow{EmfType::RoundRect, 32, RecordKind::Drawing, RoundRect},
    EmfRow{EmfType::Arc, 40, RecordKind::Drawing, Arc},
    EmfRow{EmfType::Chord, 40, RecordKind::Drawing, Chord},
    EmfRow{EmfType::Pie, 40, RecordKind::Drawing, Pie},
    EmfRow{EmfType::ArcTo, 40, RecordKind::Drawing, ArcTo},
    EmfRow{EmfType::AngleArc, 28, RecordKind::Drawing, AngleArc},
    EmfRow{EmfType::LineTo, 16, RecordKind::Drawing, LineTo},
    EmfRow{EmfType::SetPixel, 20, RecordKind::Drawing, SetPixel},
};

} // namespace

std::span<const EmfRow> EmfShapeRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
