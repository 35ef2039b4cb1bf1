// Shapes that records name by the rectangle around them.
#pragma once

#include "picture/metafile/canvas/DeviceContext.h"

namespace pictorel::metafile {

void DrawRectangle(DeviceContext& context, const QRectF& box);
void DrawEllipse(DeviceContext& context, const QRectF& box);
void DrawRoundRectangle(DeviceContext& context, const QRectF& box,
                        QSizeF corner); // full axes of the corner ellipse

// Part of the ellipse in a box, from the ray through `from` to the one through `to` in the direction of the
// state.
struct ArcFields {
    QRectF box;
    QPointF from;
    QPointF to;
};
enum class ArcKind { Arc, Chord, Pie };
void DrawArc(DeviceContext& context, const ArcFields& arc, ArcKind kind);
void DrawArcOnwards(DeviceContext& context, const ArcFields& arc); // from the position, which its end becomes

// From the position to a circle, and on along it; degrees, counter-clockwise.
void DrawAngleArc(DeviceContext& context, QPointF centre, double radius, double start, double sweep);

} // namespace pictorel::metafile
