// What stroking a path costs, see StrokeWork.h.
#include "picture/metafile/canvas/StrokeWork.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace pictorel::metafile {

double StrokeWork(const QPainterPath& path, const QPen& pen, const QRect& area) {
    constexpr double kPerPoint = 500;
    constexpr double kPerDash = 300;
    const double width = std::max(pen.widthF(), 1.0);
    const double longest = 2 * std::hypot(area.width(), area.height());
    const QList<qreal> dashes = pen.dashPattern();
    const double dashesPerWidth =
        dashes.isEmpty() ? 0
                         : double(dashes.size()) / std::max(std::reduce(dashes.begin(), dashes.end()), 0.01);
    double work = 0;
    for (int i = 1; i < path.elementCount(); ++i) {
        const QPointF step = QPointF(path.elementAt(i)) - QPointF(path.elementAt(i - 1));
        const double length = std::min(std::hypot(step.x(), step.y()), longest);
        work += kPerPoint + length / width * dashesPerWidth * kPerDash +
                std::min((length + width) * width, double(area.width()) * area.height()) / 4;
    }
    return work;
}

} // namespace pictorel::metafile
