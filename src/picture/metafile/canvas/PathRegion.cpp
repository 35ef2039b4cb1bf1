// The whole pixels that a path covers, see PathRegion.h.
#include "picture/metafile/canvas/PathRegion.h"

#include "picture/metafile/canvas/PaintingWork.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace pictorel::metafile {
namespace {

bool IsUprightRectangle(const QPolygonF& polygon) {
    constexpr qsizetype kClosedRectangle = 5;
    if (polygon.size() != kClosedRectangle || polygon.first() != polygon.last()) {
        return false;
    }
    const bool startsAcross = polygon[0].y() == polygon[1].y();
    for (qsizetype i = 0; i + 1 < polygon.size(); ++i) {
        const QPointF side = polygon[i + 1] - polygon[i];
        if ((startsAcross == (i % 2 == 0) ? side.y() : side.x()) != 0) {
            return false;
        }
    }
    return true;
}

QRect WholePixels(const QRectF& rectangle) {
    const auto edge = [](double value) { return static_cast<int>(std::ceil(value - 0.5)); };
    return {QPoint(edge(rectangle.left()), edge(rectangle.top())),
            QPoint(edge(rectangle.right()) - 1, edge(rectangle.bottom()) - 1)};
}

// The runs of marked pixels in a row, as rectangles one pixel high.
std::vector<QRect> RunsIn(const uchar* row, int width, QPoint at) {
    std::vector<QRect> runs;
    const uchar* const end = row + width;
    const auto isMarked = [](uchar pixel) { return pixel != 0; };
    for (const uchar* begin = std::find_if(row, end, isMarked); begin != end;) {
        const uchar* const stop = std::find_if_not(begin, end, isMarked);
        runs.emplace_back(at.x() + static_cast<int>(begin - row), at.y(), static_cast<int>(stop - begin), 1);
        begin = std::find_if(stop, end, isMarked);
    }
    return runs;
}

bool AreBelow(const std::vector<QRect>& band, const std::vector<QRect>& runs) {
    return std::equal(band.begin(), band.end(), runs.begin(), runs.end(), [](const QRect& a, const QRect& b) {
        return a.left() == b.left() && a.right() == b.right();
    });
}

// Bands of rectangles from the top down, as regions hold them.
QRegion RegionOfMarks(const QImage& marks, QPoint corner) {
    std::vector<QRect> all;
    std::vector<QRect> band;
    for (int y = 0; y < marks.height(); ++y) {
        std::vector<QRect> runs = RunsIn(marks.constScanLine(y), marks.width(), corner + QPoint(0, y));
        if (y > 0 && AreBelow(band, runs)) {
            for (QRect& rectangle : band) {
                rectangle.setBottom(corner.y() + y);
            }
            continue;
        }
        all.insert(all.end(), band.begin(), band.end());
        band = std::move(runs);
    }
    all.insert(all.end(), band.begin(), band.end());
    QRegion region;
    region.setRects(all.data(), static_cast<int>(all.size()));
    return region;
}

QRect Box(const QPainterPath& path, const QRect& bounds) {
    const QRectF reached = path.controlPointRect() & QRectF(bounds);
    return reached.isEmpty() ? QRect() : reached.toAlignedRect() & bounds;
}

} // namespace

double RegionWork(const QPainterPath& path, const QRect& bounds) {
    constexpr double kPerPixel = 1;
    const QRect box = Box(path, bounds);
    return OutlineWork(path, box) + kPerPixel * box.width() * box.height();
}

// By painting it: what the painter's library makes of polygons itself takes time that grows with the square
// of their corners.
QRegion RegionOfPath(const QPainterPath& path, const QRect& bounds) {
    const QPolygonF polygon = path.elementCount() > 5 ? QPolygonF() : path.toFillPolygon();
    if (IsUprightRectangle(polygon)) {
        return QRegion(WholePixels(polygon.boundingRect()) & bounds);
    }
    const QRect box = Box(path, bounds);
    QImage marks(box.size(), QImage::Format_Grayscale8);
    if (box.isEmpty() || marks.isNull()) {
        return {};
    }
    marks.fill(0);
    QPainter painter(&marks);
    painter.translate(-box.topLeft());
    painter.fillPath(path, Qt::white);
    painter.end();
    return RegionOfMarks(marks, box.topLeft());
}

} // namespace pictorel::metafile
