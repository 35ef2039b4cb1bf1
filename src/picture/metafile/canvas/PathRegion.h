// The whole pixels that a path covers.
#pragma once

#include <QPainterPath>
#include <QRegion>

namespace pictorel::metafile {

// Those inside `bounds`, of which no coordinate may be beyond 16 bits. A pixel counts where the path covers
// its middle.
QRegion RegionOfPath(const QPainterPath& path, const QRect& bounds);

} // namespace pictorel::metafile
