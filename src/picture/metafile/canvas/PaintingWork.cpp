// What painting costs, see PaintingWork.h.
#include "picture/metafile/canvas/PaintingWork.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace pictorel::metafile {
namespace {

constexpr double kPerCall = 3000;
constexpr double kPerElement = 300;
constexpr double kPerPlainPixel = 0.6;
constexpr double kPerPatternPixel = 6; // textures and gradients

double PixelWork(const QBrush& brush, double pixels) {
    return pixels * (brush.style() == Qt::SolidPattern ? kPerPlainPixel : kPerPatternPixel);
}

// An edge in a row of pixels is a crossing; the painter keeps those of a row in order, the harder the more
// they are.
double CrossingWork(double crossings, const QRect& area) {
    constexpr double kLeast = 15;
    constexpr double kMost = 150;
    constexpr double kPerNeighbour = 0.015;
    const double neighbours = crossings / std::max(area.height(), 1);
    return crossings * std::min(kLeast + kPerNeighbour * neighbours, kMost);
}

// Rows of the area that a step of the path runs through.
double RowsBetween(QPointF from, QPointF to, const QRect& area) {
    const auto within = [&](double y) { return std::clamp<double>(y, area.top(), area.bottom() + 1.0); };
    return std::abs(within(from.y()) - within(to.y()));
}

} // namespace

double OutlineWork(const QPainterPath& path, const QRect& area) {
    double rows = 0;
    QPointF start;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPointF point = path.elementAt(i);
        if (path.elementAt(i).isMoveTo()) {
            rows += i > 0 ? RowsBetween(path.elementAt(i - 1), start, area) : 0; // areas close by themselves
            start = point;
        } else {
            rows += RowsBetween(path.elementAt(i - 1), point, area);
        }
    }
    return path.elementCount() * kPerElement + CrossingWork(rows, area);
}

double FillWork(const QPainterPath& path, const QBrush& brush, const QRect& area) {
    return kPerCall + OutlineWork(path, area) + PixelWork(brush, double(area.width()) * area.height());
}

double StrokeWork(const QPainterPath& path, const QPen& pen, const QRect& area) {
    constexpr double kPerStep = 2000;
    constexpr double kPerDash = 6000;
    constexpr double kSidesOfALine = 2;
    const double width = std::max(pen.widthF(), 1.0);
    const double whole = double(area.width()) * area.height();
    const double longest = 2 * std::hypot(area.width(), area.height());
    const QList<qreal> dashes = pen.dashPattern();
    const double dashesPerWidth =
        dashes.isEmpty()
            ? 0
            : double(dashes.size()) / 2 / std::max(std::reduce(dashes.begin(), dashes.end()), 0.01);
    double work = kPerCall;
    double crossings = 0;
    for (int i = 1; i < path.elementCount(); ++i) {
        const QPointF from = path.elementAt(i - 1);
        const QPointF to = path.elementAt(i);
        const double length = std::min(std::hypot(to.x() - from.x(), to.y() - from.y()), longest);
        crossings += kSidesOfALine * (RowsBetween(from, to, area) + std::min<double>(width, area.height()));
        work += kPerStep + length / width * dashesPerWidth * kPerDash +
                PixelWork(pen.brush(), std::min((length + width) * width, whole));
    }
    return work + CrossingWork(crossings, area);
}

double ClippingWork(int rectangles) {
    constexpr double kPerRectangle = 1000;
    return kPerCall + rectangles * kPerRectangle;
}

} // namespace pictorel::metafile
