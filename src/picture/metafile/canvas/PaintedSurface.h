// The canvas that a metafile is drawn on: white paper, several of its pixels to a pixel of the picture.
#pragma once

#include "picture/PixelArray.h"
#include "picture/metafile/canvas/Surface.h"

#include <QPainter>

namespace pictorel::metafile {

class PlacedBitmap;

class PaintedSurface : public Surface {
  public:
    // Lines and edges are smooth because `scale` x `scale` pixels of the canvas become one of the picture:
    // unlike blended edges, that leaves no seams between areas that touch, and bits to the raster operations.
    // `work` is what drawing may cost (PaintingWork.h). Throws ImagingError(TooLarge, OutOfMemory).
    PaintedSurface(QSize picture, int scale, double work);

    void Fill(const QPainterPath& path, const QBrush& brush, int operation) override;
    void Stroke(const QPainterPath& path, const QPen& pen, int operation) override;
    void Put(const Stamp& stamp) override;
    void PutImage(QPoint at, const QImage& image) override;
    void SetClip(const std::optional<QRegion>& region) override;
    QRect Bounds() const override { return canvas_.rect(); }
    bool WantsPixels() const override { return true; }
    void Spend(double work) override { work_ -= work; }
    bool IsExhausted() const override { return work_ < 0; }

    // Whether anything was drawn.
    bool IsPainted() const { return isPainted_; }

    // What was drawn, opaque. The surface draws no more.
    PixelArray Finish();

  private:
    double UnderClip(const QRect& area) const;
    QRect Reached(const QRectF& area) const; // whole pixels that are inside canvas and clip
    void Mix(const Stamp& stamp, const PlacedBitmap& placed, const QImage& image, const QRect& area);

    PixelArray memory_; // of the canvas
    QImage canvas_;
    int scale_;
    double work_;
    int clipRectangles_ = 0;
    bool isPainted_ = false;
    QPainter painter_;
};

} // namespace pictorel::metafile
