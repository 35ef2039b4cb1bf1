// Records of Windows metafiles that set the drawing state: modes, colours, coordinates.
#include "picture/metafile/wmf/WmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

void SaveDc(DeviceContext& dc, const Fields& /*f*/) {
    dc.Save();
}

void RestoreDc(DeviceContext& dc, const Fields& f) {
    dc.Restore(f.Short(0));
}

void SetBkMode(DeviceContext& dc, const Fields& f) {
    constexpr int kTransparent = 1;
    dc.State().opaqueBackground = f.Short(0) != kTransparent;
}

void SetMapMode(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetMode(f.Short(0));
}

void SetRop2(DeviceContext& dc, const Fields& f) {
    dc.State().operation = f.Short(0);
}

void SetPolyFillMode(DeviceContext& dc, const Fields& f) {
    constexpr int kWinding = 2;
    dc.State().fillRule = f.Short(0) == kWinding ? Qt::WindingFill : Qt::OddEvenFill;
}

void SetStretchBltMode(DeviceContext& dc, const Fields& f) {
    constexpr int kHalftone = 4;
    dc.State().smoothBitmaps = f.Short(0) == kHalftone;
}

void SetTextCharExtra(DeviceContext& dc, const Fields& f) {
    dc.State().textExtra = f.Short(0);
}

void SetTextAlign(DeviceContext& dc, const Fields& f) {
    dc.State().textAlignment = f.Word(0);
}

void SetBkColour(DeviceContext& dc, const Fields& f) {
    dc.State().backgroundColour = f.Colour(0);
}

void SetTextColour(DeviceContext& dc, const Fields& f) {
    dc.State().textColour = f.Colour(0);
}

void SetWindowOrg(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetWindowOrigin(ReversedPoint(f, 0));
}

void SetWindowExt(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetWindowExtent(ReversedPoint(f, 0));
}

void SetViewportOrg(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetViewportOrigin(ReversedPoint(f, 0));
}

void SetViewportExt(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.SetViewportExtent(ReversedPoint(f, 0));
}

void OffsetWindowOrg(DeviceContext& dc, const Fields& f) {
    Mapping& mapping = dc.State().mapping;
    mapping.SetWindowOrigin(mapping.WindowOrigin() + ReversedPoint(f, 0));
}

void OffsetViewportOrg(DeviceContext& dc, const Fields& f) {
    Mapping& mapping = dc.State().mapping;
    mapping.SetViewportOrigin(mapping.ViewportOrigin() + ReversedPoint(f, 0));
}

// Denominator and numerator alternate: down, then across.
void ScaleWindowExt(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.ScaleWindow({double(f.Short(6)), double(f.Short(2))},
                                   {double(f.Short(4)), double(f.Short(0))});
}

void ScaleViewportExt(DeviceContext& dc, const Fields& f) {
    dc.State().mapping.ScaleViewport({double(f.Short(6)), double(f.Short(2))},
                                     {double(f.Short(4)), double(f.Short(0))});
}

void MoveTo(DeviceContext& dc, const Fields& f) {
    dc.MoveTo(ReversedPoint(f, 0));
}

constexpr std::array kRows{
    WmfRow{WmfType::SaveDc, 0, RecordKind::Setting, SaveDc},
    WmfRow{WmfType::RestoreDc, 2, RecordKind::Setting, RestoreDc},
    WmfRow{WmfType::SetBkMode, 2, RecordKind::Setting, SetBkMode},
    WmfRow{WmfType::SetMapMode, 2, RecordKind::Setting, SetMapMode},
    WmfRow{WmfType::SetRop2, 2, RecordKind::Setting, SetRop2},
    WmfRow{WmfType::SetPolyFillMode, 2, RecordKind::Setting, SetPolyFillMode},
    WmfRow{WmfType::SetStretchBltMode, 2, RecordKind::Setting, SetStretchBltMode},
    WmfRow{WmfType::SetTextCharExtra, 2, RecordKind::Setting, SetTextCharExtra},
    WmfRow{WmfType::SetTextAlign, 2, RecordKind::Setting, SetTextAlign},
    WmfRow{WmfType::SetBkColour, 4, RecordKind::Setting, SetBkColour},
    WmfRow{WmfType::SetTextColour, 4, RecordKind::Setting, SetTextColour},
    WmfRow{WmfType::SetWindowOrg, 4, RecordKind::Setting, SetWindowOrg},
    WmfRow{WmfType::SetWindowExt, 4, RecordKind::Setting, SetWindowExt},
    WmfRow{WmfType::SetViewportOrg, 4, RecordKind::Setting, SetViewportOrg},
    WmfRow{WmfType::SetViewportExt, 4, RecordKind::Setting, SetViewportExt},
    WmfRow{WmfType::OffsetWindowOrg, 4, RecordKind::Setting, OffsetWindowOrg},
    WmfRow{WmfType::OffsetViewportOrg, 4, RecordKind::Setting, OffsetViewportOrg},
    WmfRow{WmfType::ScaleWindowExt, 8, RecordKind::Setting, ScaleWindowExt},
    WmfRow{WmfType::ScaleViewportExt, 8, RecordKind::Setting, ScaleViewportExt},
    WmfRow{WmfType::MoveTo, 4, RecordKind::Setting, MoveTo},
};

} // namespace

std::span<const WmfRow> WmfStateRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
