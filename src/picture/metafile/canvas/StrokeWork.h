// What stroking a path costs the painter at most, in pixels touched.
#pragma once

#include <QPainterPath>
#include <QPen>

namespace pictorel::metafile {

// `area` is the part of the canvas that the stroke can reach: what is beyond costs next to nothing.
double StrokeWork(const QPainterPath& path, const QPen& pen, const QRect& area);

} // namespace pictorel::metafile
