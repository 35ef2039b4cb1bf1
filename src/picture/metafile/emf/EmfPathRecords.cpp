// Records of enhanced metafiles that build a path and draw it.
#include "picture/metafile/emf/EmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

void BeginPath(DeviceContext& dc, const Fields& /*f*/) {
    dc.BeginPath();
}

void EndPath(DeviceContext& dc, const Fields& /*f*/) {
    dc.EndPath();
}

void CloseFigure(DeviceContext& dc, const Fields& /*f*/) {
    dc.CloseFigure();
}

void FillPath(DeviceContext& dc, const Fields& /*f*/) {
    dc.DrawPath(Parts::Inside);
}

void StrokeAndFillPath(DeviceContext& dc, const Fields& /*f*/) {
    dc.DrawPath(Parts::Both);
}

void StrokePath(DeviceContext& dc, const Fields& /*f*/) {
    dc.DrawPath(Parts::Outline);
}

void FlattenPath(DeviceContext& dc, const Fields& /*f*/) {
    dc.FlattenPath();
}

void WidenPath(DeviceContext& dc, const Fields& /*f*/) {
    dc.WidenPath();
}

void AbortPath(DeviceContext& dc, const Fields& /*f*/) {
    dc.AbortPath();
}

constexpr std::array kRows{
    EmfRow{EmfType::BeginPath, 8, RecordKind::Setting, BeginPath},
    EmfRow{EmfType::EndPath, 8, RecordKind::Setting, EndPath},
    EmfRow{EmfType::CloseFigure, 8, RecordKind::Setting, CloseFigure},
    EmfRow{EmfType::FillPath, 8, RecordKind::Drawing, FillPath},
    EmfRow{EmfType::StrokeAndFillPath, 8, RecordKind::Drawing, StrokeAndFillPath},
    EmfRow{EmfType::StrokePath, 8, RecordKind::Drawing, StrokePath},
    EmfRow{EmfType::FlattenPath, 8, RecordKind::Setting, FlattenPath},
    EmfRow{EmfType::WidenPath, 8, RecordKind::Setting, WidenPath},
    EmfRow{EmfType::AbortPath, 8, RecordKind::Setting, AbortPath},
};

} // namespace

std::span<const EmfRow> EmfPathRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
