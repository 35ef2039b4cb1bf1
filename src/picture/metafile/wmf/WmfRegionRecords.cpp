// Records of Windows metafiles that draw regions and clip.
#include "picture/metafile/canvas/Regions.h"
#include "picture/metafile/wmf/WmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

QRectF ReversedBox(const Fields& f) { // bottom, right, top, left
    return {ReversedPoint(f, 4), ReversedPoint(f, 0)};
}

QPainterPath RegionIn(DeviceContext& dc, std::uint32_t slot) {
    const SharedObject object = dc.Objects().At(slot);
    const auto* const region = object ? std::get_if<RegionShape>(object.get()) : nullptr;
    return region == nullptr ? QPainterPath() : PathOf(region->rectangles);
}

void FillRegionRecord(DeviceContext& dc, const Fields& f) {
    FillRegion(dc, RegionIn(dc, f.Word(0)), f.Word(2));
}

void FrameRegionRecord(DeviceContext& dc, const Fields& f) {
    FrameRegion(dc, RegionIn(dc, f.Word(0)), f.Word(2), {double(f.Short(6)), double(f.Short(4))});
}

void InvertRegionRecord(DeviceContext& dc, const Fields& f) {
    InvertRegion(dc, RegionIn(dc, f.Word(0)));
}

void PaintRegionRecord(DeviceContext& dc, const Fields& f) {
    PaintRegion(dc, RegionIn(dc, f.Word(0)));
}

// What is no region ends all clipping.
void SelectClipRegion(DeviceContext& dc, const Fields& f) {
    const QPainterPath region = RegionIn(dc, f.Word(0));
    if (region.isEmpty()) {
        dc.ClearClip();
    } else {
        dc.Clip(dc.OnCanvas(region), DeviceContext::Combine::Copy);
    }
}

void OffsetClipRegion(DeviceContext& dc, const Fields& f) {
    dc.OffsetClip(ReversedPoint(f, 0));
}

void ExcludeClipRect(DeviceContext& dc, const Fields& f) {
    ExcludeClip(dc, ReversedBox(f));
}

void IntersectClipRect(DeviceContext& dc, const Fields& f) {
    IntersectClip(dc, ReversedBox(f));
}

constexpr std::array kRows{
    WmfRow{WmfType::FillRegion, 4, RecordKind::Drawing, FillRegionRecord},
    WmfRow{WmfType::FrameRegion, 8, RecordKind::Drawing, FrameRegionRecord},
    WmfRow{WmfType::InvertRegion, 2, RecordKind::Drawing, InvertRegionRecord},
    WmfRow{WmfType::PaintRegion, 2, RecordKind::Drawing, PaintRegionRecord},
    WmfRow{WmfType::SelectClipRegion, 2, RecordKind::Setting, SelectClipRegion},
    WmfRow{WmfType::OffsetClipRegion, 4, RecordKind::Setting, OffsetClipRegion},
    WmfRow{WmfType::ExcludeClipRect, 8, RecordKind::Setting, ExcludeClipRect},
    WmfRow{WmfType::IntersectClipRect, 8, RecordKind::Setting, IntersectClipRect},
};

} // namespace

std::span<const WmfRow> WmfRegionRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
