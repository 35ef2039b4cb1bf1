// A bitmap's place on the canvas: whole pixels of the picture where it stands upright, and how it is scaled
// there.
#pragma once

#include "picture/metafile/canvas/Surface.h"

namespace pictorel::metafile {

class PlacedBitmap {
  public:
    // `pixel` canvas pixels are one of the picture. A bitmap that stands upright is moved to whole pixels of
    // the picture, so that neighbours meet and one drawn at its own size keeps its pixels.
    PlacedBitmap(const Stamp& stamp, int pixel);

    // What it covers; empty where nothing can be drawn.
    const QRectF& Area() const noexcept { return area_; }

    // Draws `image`, the stamp's bitmap, or with `shift` another one that lies over it by so many pixels.
    // Reduced bitmaps are filtered; enlarged ones where the stamp says so. Nothing is drawn outside the
    // stamp's part.
    void Draw(QPainter& painter, const QImage& image, QPointF shift = {}) const;

  private:
    void DrawUpright(QPainter& painter, const QImage& image, QPointF shift) const;
    void DrawTurned(QPainter& painter, const QImage& image, QPointF shift) const;

    QTransform toCanvas_;
    QRectF part_;
    QRectF area_;
    bool upright_;
    bool smooth_;
};

} // namespace pictorel::metafile
