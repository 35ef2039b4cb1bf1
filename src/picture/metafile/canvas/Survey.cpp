// Notes what a metafile would draw, see Survey.h.
#include "picture/metafile/canvas/Survey.h"

#include <cmath>

namespace pictorel::metafile {

void Survey::Note(const QRectF& area) {
    constexpr double kPerNote = 100;
    Spend(kPerNote);
    constexpr double kFurthest = 1 << 22; // the longest sheet, of one unit an inch
    const QRectF reached = area & QRectF(-kFurthest, -kFurthest, 2 * kFurthest, 2 * kFurthest);
    extents_ = extents_.isNull() ? reached : extents_ | reached;
}

void Survey::Fill(const QPainterPath& path, const QBrush& /*brush*/, int /*operation*/) {
    Note(path.controlPointRect());
    drawsMore_ = true;
}

void Survey::Stroke(const QPainterPath& path, const QPen& pen, int /*operation*/) {
    const double half = pen.widthF() / 2;
    Note(path.controlPointRect().adjusted(-half, -half, half, half));
    drawsMore_ = true;
}

void Survey::PutImage(QPoint at, const QImage& image) {
    Note(QRectF(at, image.size()));
    drawsMore_ = true;
}

void Survey::Put(const Stamp& stamp) {
    const QRectF area = stamp.toCanvas.mapRect(stamp.part.normalized());
    Note(area);
    const bool isCopy = stamp.bitmap != nullptr && stamp.operation == kCopySource && stamp.mask == nullptr;
    if (!isCopy) {
        drawsMore_ = true;
        return;
    }
    drawsMore_ |= stamp.blendsAlpha || stamp.opacity < 1 || stamp.transparent.has_value();
    const QSize size = stamp.bitmap->Size();
    copies_.push_back({area, std::hypot(stamp.toCanvas.m11(), stamp.toCanvas.m12()),
                       std::hypot(stamp.toCanvas.m21(), stamp.toCanvas.m22()), stamp.bitmap->DotsPerInchX(),
                       stamp.bitmap->DotsPerInchY(), double(size.width()) * size.height()});
}

} // namespace pictorel::metafile
