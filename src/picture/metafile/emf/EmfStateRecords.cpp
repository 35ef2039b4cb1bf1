// Records of enhanced metafiles that set the drawing state: modes, colours, coordinates.
#include "picture/metafile/emf/EmfRecords.h"

#include <array>
#include <cmath>

namespace pictorel::metafile {
namespace {

QTransform Matrix(const Fields& f, std::size_t at) {
    return {f.Real(at), f.Real(at + 4), f.Real(at + 8), f.Real(at + 12), f.Real(at + 16), f.Real(at + 20)};
}

// Products of matrices can grow beyond what arithmetic bears: such a change is not made.
void SetWorld(DeviceContext& dc, const QTransform& world) {
    constexpr double kMost = 1e12;
    for (const double value : {world.m11(), world.m12(), world.m21(), world.m22(), world.dx(), world.dy()}) {
        if (!(std::abs(value) < kMost)) {
            return;
        }
    }
    dc.State().mapping.SetWorld(world);
}

void SetWorldTransform(DeviceContext& dc, const Fields& f) {
    SetWorld(dc, Matrix(f, 8));
}

void ModifyWorldTransform(DeviceContext& dc, const Fields& f) {
    enum Mode { Identity = 1, MultiplyLeft, MultiplyRight, Replace };
    const QTransform matrix = Matrix(f, 8);
    const QTransform world = dc.State().mapping.World();
    switch (f.UInt(32)) {
        case Identity:
            SetWorld(dc, {});
            break;
        case MultiplyLeft:
            SetWorld(dc, matrix * world);
            break;
        case MultiplyRight:
            SetWorld(dc, world * matrix);
            break;
        case Replace:
            SetWorld(dc, matrix);
            break;
        default:
            break;
    }
}

void SetWindowExt(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetWindowExtent(f.Point32(8));
}

void SetWindowOrg(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetWindowOrigin(f.Point32(8));
}

void SetViewportExt(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetViewportExtent(f.Point32(8));
}

void SetViewportOrg(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetViewportOrigin(f.Point32(8));
}

// Numerator and denominator alternate: across, then down.
void ScaleViewportExt(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.ScaleViewport({double(f.Int(8)), double(f.Int(16))},
                                     {double(f.Int(12)), double(f.Int(20))});
}

void ScaleWindowExt(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.ScaleWindow({double(f.Int(8)), double(f.Int(16))},
                                   {double(f.Int(12)), double(f.Int(20))});
}

void SetMapMode(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetMode(f.Int(8));
}

void SetBrushOrg(DeviceContext& dc, const Fields& f) {
    dc.State().brushOrigin = f.Point32(8);
}

void SetBkMode(DeviceContext& dc, const Fields& f) {
    constexpr std::uint32_t kTransparent = 1;
    dc.State().opaqueBackground = f.UInt(8) != kTransparent;
}

void SetPolyFillMode(DeviceContext& dc, const Fields& f) {
    constexpr std::uint32_t kWinding = 2;
    dc.State().fillRule = f.UInt(8) == kWinding ? Qt::WindingFill : Qt::OddEvenFill;
}

void SetRop2(DeviceContext& dc, const Fields& f) {
    dc.State().operation = f.Int(8);
}

void SetStretchBltMode(DeviceContext& dc, const Fields& f) {
    constexpr std::uint32_t kHalftone = 4;
    dc.State().smoothBitmaps = f.UInt(8) == kHalftone;
}

void SetTextAlign(DeviceContext& dc, const Fields& f) {
    dc.State().textAlignment = f.UInt(8);
}

void SetTextColour(DeviceContext& dc, const Fields& f) {
    dc.State().textColour = f.Colour(8);
}

void SetBkColour(DeviceContext& dc, const Fields& f) {
    dc.State().backgroundColour = f.Colour(8);
}

void SetArcDirection(DeviceContext& dc, const Fields& f) {
    dc.State().arcDirection = f.UInt(8) == 2 ? ArcDirection::Clockwise : ArcDirection::CounterClockwise;
}

// A whole number in some files and a real one in others.
void SetMiterLimit(DeviceContext& dc, const Fields& f) {
    constexpr std::uint32_t kMostWhole = 1U << 16;
    dc.State().miterLimit = f.UInt(8) < kMostWhole ? f.UInt(8) : f.Real(8);
}

void SaveDc(DeviceContext& dc, const Fields& /*f*/) {
    dc.Save();
}

void RestoreDc(DeviceContext& dc, const Fields& f) {
    dc.Restore(f.Int(8));
}

void MoveTo(DeviceContext& dc, const Fields& f) {
    dc.MoveTo(f.Point32(8));
}

constexpr std::array kRows{
    EmfRow{EmfType::SetWorldTransform, 32, RecordKind::Setting, SetWorldTransform},
    EmfRow{EmfType::ModifyWorldTransform, 36, RecordKind::Setting, ModifyWorldTransform},
    EmfRow{EmfType::SetWindowExt, 16, RecordKind::Setting, SetWindowExt},
    EmfRow{EmfType::SetWindowOrg, 16, RecordKind::Setting, SetWindowOrg},
    EmfRow{EmfType::SetViewportExt, 16, RecordKind::Setting, SetViewportExt},
    EmfRow{EmfType::SetViewportOrg, 16, RecordKind::Setting, SetViewportOrg},
    EmfRow{EmfType::ScaleViewportExt, 24, RecordKind::Setting, ScaleViewportExt},
    EmfRow{EmfType::ScaleWindowExt, 24, RecordKind::Setting, ScaleWindowExt},
    EmfRow{EmfType::SetMapMode, 12, RecordKind::Setting, SetMapMode},
    EmfRow{EmfType::SetBrushOrg, 16, RecordKind::Setting, SetBrushOrg},
    EmfRow{EmfType::SetBkMode, 12, RecordKind::Setting, SetBkMode},
    EmfRow{EmfType::SetPolyFillMode, 12, RecordKind::Setting, SetPolyFillMode},
    EmfRow{EmfType::SetRop2, 12, RecordKind::Setting, SetRop2},
    EmfRow{EmfType::SetStretchBltMode, 12, RecordKind::Setting, SetStretchBltMode},
    EmfRow{EmfType::SetTextAlign, 12, RecordKind::Setting, SetTextAlign},
    EmfRow{EmfType::SetTextColour, 12, RecordKind::Setting, SetTextColour},
    EmfRow{EmfType::SetBkColour, 12, RecordKind::Setting, SetBkColour},
    EmfRow{EmfType::SetArcDirection, 12, RecordKind::Setting, SetArcDirection},
    EmfRow{EmfType::SetMiterLimit, 12, RecordKind::Setting, SetMiterLimit},
    EmfRow{EmfType::SaveDc, 8, RecordKind::Setting, SaveDc},
    EmfRow{EmfType::RestoreDc, 12, RecordKind::Setting, RestoreDc},
    EmfRow{EmfType::MoveTo, 16, RecordKind::Setting, MoveTo},
};

} // namespace

std::span<const EmfRow> EmfStateRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
