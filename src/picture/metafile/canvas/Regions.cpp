// Regions that are filled, framed, inverted or clip, see Regions.h.
#include "picture/metafile/canvas/Regions.h"

#include <algorithm>
#include <cmath>

namespace pictorel::metafile {
namespace {

constexpr int kInvertPaper = 6; // of the operations on two operands

// How far the width of a frame reaches on the canvas: at least one pixel of the picture.
int FrameReach(const DeviceContext& context, QPointF width) {
    const QPointF reach = context.OnCanvas(width) - context.OnCanvas(QPointF());
    return static_cast<int>(std::round(std::max(std::hypot(reach.x(), reach.y()), context.Place().pixel)));
}

} // namespace

QPainterPath PathOf(const std::vector<QRectF>& rectangles) {
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    for (const QRectF& rectangle : rectangles) {
        path.addRect(rectangle.normalized());
    }
    return path;
}

QPainterPath PathOf(const QRectF& rectangle) {
    return PathOf(std::vector{rectangle});
}

void FillRegion(DeviceContext& context, const QPainterPath& region, std::uint32_t brushSlot) {
    const SharedObject object = context.Objects().At(brushSlot);
    if (const auto* const brush = object ? std::get_if<Brush>(object.get()) : nullptr) {
        context.Fill(context.OnCanvas(region), *brush);
    }
}

void FrameRegion(DeviceContext& context, const QPainterPath& region, std::uint32_t brushSlot, QSizeF width) {
    const SharedObject object = context.Objects().At(brushSlot);
    const auto* const brush = object ? std::get_if<Brush>(object.get()) : nullptr;
    if (brush == nullptr) {
        return;
    }
    const QRegion whole = context.RegionOf(context.OnCanvas(region));
    const int across = FrameReach(context, {width.width(), 0});
    const int down = FrameReach(context, {0, width.height()});
    const QRegion inside = whole & whole.translated(across, 0) & whole.translated(-across, 0) &
                           whole.translated(0, down) & whole.translated(0, -down);
    QPainterPath frame;
    frame.addRegion(whole - inside);
    context.Fill(frame, *brush);
}

void InvertRegion(DeviceContext& context, const QPainterPath& region) {
    context.FillWith(context.OnCanvas(region), Qt::black, kInvertPaper);
}

void PaintRegion(DeviceContext& context, const QPainterPath& region) {
    context.Fill(context.OnCanvas(region), *context.State().brush);
}

void IntersectClip(DeviceContext& context, const QRectF& rectangle) {
    context.Clip(context.OnCanvas(PathOf(rectangle)), DeviceContext::Combine::And);
}

void ExcludeClip(DeviceContext& context, const QRectF& rectangle) {
    context.Clip(context.OnCanvas(PathOf(rectangle)), DeviceContext::Combine::Difference);
}

} // namespace pictorel::metafile
