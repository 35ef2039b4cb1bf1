// What records draw on: the canvas of the picture, or a survey that only notes what would be drawn.
#pragma once

#include "picture/metafile/canvas/Bitmap.h"
#include "picture/metafile/canvas/RasterOperations.h"

#include <QBrush>
#include <QPainterPath>
#include <QPen>
#include <QRegion>
#include <QTransform>

#include <optional>

namespace pictorel::metafile {

// A bitmap, or where there is none a pattern, put on the canvas by an operation on three operands.
struct Stamp {
    const Bitmap* bitmap = nullptr;
    QTransform toCanvas; // from the pixels of the bitmap; from any units where there is none
    QRectF part;         // of the bitmap, or the area in those units
    TernaryOperation operation = kCopySource;
    QBrush pattern;
    bool smooth = false; // where it is enlarged

    const Bitmap* mask = nullptr; // where its bits are 0 ...
    QPointF maskOrigin;
    TernaryOperation whereMaskIsZero = kKeepPaper; // ... this operation instead

    double opacity = 1;
    bool blendsAlpha = false;          // the bitmap has alpha, and is laid over
    std::optional<QRgb> transparent{}; // this colour of the bitmap is not drawn
};

// Coordinates are pixels of the canvas, which may be several a pixel of the picture.
class Surface {
  public:
    virtual ~Surface() = default;

    // `operation` is one on two operands (RasterOperations.h).
    virtual void Fill(const QPainterPath& path, const QBrush& brush, int operation) = 0;
    virtual void Stroke(const QPainterPath& path, const QPen& pen, int operation) = 0;
    virtual void Put(const Stamp& stamp) = 0;
    virtual void PutImage(QPoint at, const QImage& image) = 0;

    virtual void SetClip(const std::optional<QRegion>& region) = 0;

    virtual QRect Bounds() const = 0;

    // Whether it matters what is drawn, or only where.
    virtual bool WantsPixels() const = 0;

    // Counts work that is done beside the surface, in the nanoseconds of PaintingWork.h.
    virtual void Spend(double work) = 0;

    // Whether the file has asked for more work than one of its size can mean: nothing is drawn from then on.
    virtual bool IsExhausted() const = 0;
};

} // namespace pictorel::metafile
