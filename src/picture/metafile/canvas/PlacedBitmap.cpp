// A bitmap's place on the canvas, see PlacedBitmap.h.
#include "picture/metafile/canvas/PlacedBitmap.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace pictorel::metafile {
namespace {

constexpr double kLargestScale = 1e5;
constexpr double kFarthestArea = 1e9;

// Both ends on whole pixels, unless nothing would be left.
void Snap(double& from, double& length, double pixel) {
    const double first = std::round(from / pixel) * pixel;
    const double end = std::round((from + length) / pixel) * pixel;
    if (end > first) {
        from = first;
        length = end - first;
    }
}

QRectF Snapped(const QRectF& area, double pixel) {
    double x = area.x();
    double y = area.y();
    double width = area.width();
    double height = area.height();
    Snap(x, width, pixel);
    Snap(y, height, pixel);
    return {x, y, width, height};
}

bool IsBearable(const QRectF& area) {
    const auto isNear = [](double value) { return std::abs(value) < kFarthestArea; }; // and is a number
    return isNear(area.left()) && isNear(area.top()) && isNear(area.right()) && isNear(area.bottom());
}

QSize ReducedSize(const QSizeF& size, double scaleX, double scaleY) {
    const auto reduced = [](double length, double scale) {
        return std::max(1, static_cast<int>(std::ceil(length * std::min(scale, 1.0))));
    };
    return {reduced(size.width(), scaleX), reduced(size.height(), scaleY)};
}

} // namespace

PlacedBitmap::PlacedBitmap(const Stamp& stamp, int pixel)
    : toCanvas_(stamp.toCanvas),
      part_(stamp.part.normalized()),
      area_(toCanvas_.mapRect(part_)),
      upright_(toCanvas_.m12() == 0 && toCanvas_.m21() == 0),
      smooth_(stamp.smooth) {
    const double scaleX = std::hypot(toCanvas_.m11(), toCanvas_.m12());
    const double scaleY = std::hypot(toCanvas_.m21(), toCanvas_.m22());
    if (part_.isEmpty() || !IsBearable(area_) || area_.isEmpty() || !(scaleX < kLargestScale) ||
        !(scaleY < kLargestScale)) {
        area_ = QRectF();
    } else if (upright_) {
        area_ = Snapped(area_, pixel);
    }
}

void PlacedBitmap::Draw(QPainter& painter, const QImage& image, QPointF shift) const {
    if (area_.isEmpty() || image.isNull()) {
        return;
    }
    painter.save();
    upright_ ? DrawUpright(painter, image, shift) : DrawTurned(painter, image, shift);
    painter.restore();
}

// Only the pixels that can be seen are scaled, and turned round before, so that the painter need not.
void PlacedBitmap::DrawUpright(QPainter& painter, const QImage& image, QPointF shift) const {
    const bool flipsX = toCanvas_.m11() < 0;
    const bool flipsY = toCanvas_.m22() < 0;
    const QImage turned = flipsX || flipsY ? image.mirrored(flipsX, flipsY) : image;
    QRectF part = part_.translated(-shift);
    if (flipsX) {
        part.moveLeft(image.width() - part.right());
    }
    if (flipsY) {
        part.moveTop(image.height() - part.bottom());
    }
    const double scaleX = area_.width() / part.width();
    const double scaleY = area_.height() / part.height();
    const QTransform place =
        QTransform::fromTranslate(area_.x(), area_.y()).scale(scaleX, scaleY).translate(-part.x(), -part.y());

    const QRectF device(QPointF(), QSizeF(painter.device()->width(), painter.device()->height()));
    const QRectF seen = place.inverted().mapRect(painter.transform().inverted().mapRect(device));
    const QRect pixels =
        (part & seen.adjusted(-2, -2, 2, 2) & QRectF(turned.rect())).toAlignedRect() & turned.rect();
    if (pixels.isEmpty()) {
        return;
    }
    painter.setClipRect(area_, Qt::IntersectClip);
    painter.setTransform(place, true);
    if (scaleX < 1 || scaleY < 1) {
        const QImage reduced = turned.copy(pixels).scaled(ReducedSize(pixels.size(), scaleX, scaleY),
                                                          Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth_);
        painter.drawImage(QRectF(pixels), reduced);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth_);
    painter.drawImage(QRectF(pixels), turned, QRectF(pixels));
}

void PlacedBitmap::DrawTurned(QPainter& painter, const QImage& image, QPointF shift) const {
    painter.setTransform(toCanvas_, true);
    painter.translate(shift);
    const QRectF pixels = part_.translated(-shift) & QRectF(image.rect());
    const double scaleX = std::hypot(toCanvas_.m11(), toCanvas_.m12());
    const double scaleY = std::hypot(toCanvas_.m21(), toCanvas_.m22());
    const bool isQuarterTurn = toCanvas_.m11() == 0 && toCanvas_.m22() == 0;
    painter.setRenderHint(QPainter::SmoothPixmapTransform, smooth_ || !isQuarterTurn);
    if (scaleX < 1 || scaleY < 1) {
        const QRect whole = pixels.toAlignedRect() & image.rect();
        painter.drawImage(QRectF(whole),
                          image.copy(whole).scaled(ReducedSize(whole.size(), scaleX, scaleY),
                                                   Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        return;
    }
    painter.drawImage(pixels, image, pixels);
}

} // namespace pictorel::metafile
