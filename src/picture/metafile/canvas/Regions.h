// Regions that are filled, framed, inverted or clip, from records of both kinds of metafiles.
#pragma once

#include "picture/metafile/canvas/DeviceContext.h"

namespace pictorel::metafile {

// The rectangles as one path, in their own units.
QPainterPath PathOf(const std::vector<QRectF>& rectangles);

QPainterPath PathOf(const QRectF& rectangle);

// Paths are logical units.
void FillRegion(DeviceContext& context, const QPainterPath& region, std::uint32_t brushSlot);
void FrameRegion(DeviceContext& context, const QPainterPath& region, std::uint32_t brushSlot, QSizeF width);
void InvertRegion(DeviceContext& context, const QPainterPath& region);
void PaintRegion(DeviceContext& context, const QPainterPath& region);
void IntersectClip(DeviceContext& context, const QRectF& rectangle);
void ExcludeClip(DeviceContext& context, const QRectF& rectangle);

} // namespace pictorel::metafile
