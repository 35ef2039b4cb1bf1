// Records of enhanced metafiles that draw regions and clip.
#include "picture/metafile/canvas/Regions.h"
#include "picture/metafile/emf/EmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

// A header that counts them, and rectangles.
QPainterPath RegionAt(const Fields& f, std::size_t at) {
    constexpr std::size_t kHeaderBytes = 32;
    constexpr std::size_t kRectangleBytes = 16;
    const std::size_t first = at + kHeaderBytes;
    std::vector<QRectF> rectangles(f.CountOf(f.UInt(at + 8), first, kRectangleBytes));
    for (std::size_t i = 0; i < rectangles.size(); ++i) {
        rectangles[i] = f.Rect32(first + i * kRectangleBytes);
    }
    return PathOf(rectangles);
}

bool IsCombination(std::uint32_t mode) {
    return mode >= static_cast<std::uint32_t>(DeviceContext::Combine::And) &&
           mode <= static_cast<std::uint32_t>(DeviceContext::Combine::Copy);
}

void FillRegionRecord(DeviceContext& dc, const Fields& f) {
    FillRegion(dc, RegionAt(f, 32), f.UInt(28));
}

void FrameRegionRecord(DeviceContext& dc, const Fields& f) {
    FrameRegion(dc, RegionAt(f, 40), f.UInt(28), {double(f.Int(32)), double(f.Int(36))});
}

void InvertRegionRecord(DeviceContext& dc, const Fields& f) {
    InvertRegion(dc, RegionAt(f, 28));
}

void PaintRegionRecord(DeviceContext& dc, const Fields& f) {
    PaintRegion(dc, RegionAt(f, 28));
}

// Clip regions are given in device units; a copy of none ends all clipping.
void ExtSelectClipRegion(DeviceContext& dc, const Fields& f) {
    const std::uint32_t mode = f.UInt(12);
    if (!IsCombination(mode)) {
        return;
    }
    const auto combine = static_cast<DeviceContext::Combine>(mode);
    if (f.UInt(8) == 0 && combine == DeviceContext::Combine::Copy) {
        dc.ClearClip();
    } else {
        dc.Clip(dc.DeviceOnCanvas(RegionAt(f, 16)), combine);
    }
}

void SelectClipPath(DeviceContext& dc, const Fields& f) {
    QPainterPath path = dc.TakePath();
    path.setFillRule(dc.State().fillRule);
    if (IsCombination(f.UInt(8))) {
        dc.Clip(path, static_cast<DeviceContext::Combine>(f.UInt(8)));
    }
}

void OffsetClipRegion(DeviceContext& dc, const Fields& f) {
    dc.OffsetClip(f.Point32(8));
}

void ExcludeClipRect(DeviceContext& dc, const Fields& f) {
    ExcludeClip(dc, f.Rect32(8));
}

void IntersectClipRect(DeviceContext& dc, const Fields& f) {
    IntersectClip(dc, f.Rect32(8));
}

void SetMetaRegion(DeviceContext& dc, const Fields& /*f*/) {
    dc.MoveClipToMeta();
}

constexpr std::array kRows{
    EmfRow{EmfType::FillRegion, 32, RecordKind::Drawing, FillRegionRecord},
    EmfRow{EmfType::FrameRegion, 40, RecordKind::Drawing, FrameRegionRecord},
    EmfRow{EmfType::InvertRegion, 28, RecordKind::Drawing, InvertRegionRecord},
    EmfRow{EmfType::PaintRegion, 28, RecordKind::Drawing, PaintRegionRecord},
    EmfRow{EmfType::ExtSelectClipRegion, 16, RecordKind::Setting, ExtSelectClipRegion},
    EmfRow{EmfType::SelectClipPath, 12, RecordKind::Setting, SelectClipPath},
    EmfRow{EmfType::OffsetClipRegion, 16, RecordKind::Setting, OffsetClipRegion},
    EmfRow{EmfType::ExcludeClipRect, 24, RecordKind::Setting, ExcludeClipRect},
    EmfRow{EmfType::IntersectClipRect, 24, RecordKind::Setting, IntersectClipRect},
    EmfRow{EmfType::SetMetaRegion, 8, RecordKind::Setting, SetMetaRegion},
};

} // namespace

std::span<const EmfRow> EmfRegionRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
