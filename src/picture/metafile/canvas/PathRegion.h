// The whole pixels that a path covers.
#pragma once

#include <QPainterPath>
#include <QRegion>

namespace pictorel::metafile {

// Those inside `bounds`. A pixel counts where the path covers its middle.
QRegion RegionOfPath(const QPainterPath& path, const QRect& bounds);

// What that costs, in the nanoseconds of PaintingWork.h.
double RegionWork(const QPainterPath& path, const QRect& bounds);

} // namespace pictorel::metafile
