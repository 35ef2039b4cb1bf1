// What painting costs, so that no drawing takes much longer than what it shows can be worth.
#pragma once

#include <QBrush>
#include <QPainterPath>
#include <QPen>
#include <QRect>

namespace pictorel::metafile {

// Work is counted in nanoseconds of an ordinary machine, as measured for each kind of drawing; an upper bound
// within a factor of two. `area` is the part of the canvas that is reached: what is beyond costs little.
double FillWork(const QPainterPath& path, const QBrush& brush, const QRect& area);
double StrokeWork(const QPainterPath& path, const QPen& pen, const QRect& area);

// Of working out which pixels a path covers, and of clipping what is painted to so many rectangles.
double OutlineWork(const QPainterPath& path, const QRect& area);
double ClippingWork(int rectangles);

} // namespace pictorel::metafile
