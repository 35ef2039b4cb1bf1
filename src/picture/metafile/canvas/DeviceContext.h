// The drawing state of a metafile being played, and the operations that its records are made of.
#pragma once

#include "picture/metafile/canvas/DrawingState.h"
#include "picture/metafile/canvas/Surface.h"

#include <vector>

namespace pictorel::metafile {

// Where the device of the file stands on the canvas.
struct Placement {
    QTransform toCanvas;                             // from device units
    double pixel = 1;                                // canvas pixels a picture pixel
    QPointF dotsPerMillimetre{96 / 25.4, 96 / 25.4}; // of the device
};

// Canvas coordinates end here: far beyond any canvas, and near enough for the painter's whole numbers.
inline constexpr double kFarthest = 1 << 17;

// The path with its coordinates brought within kFarthest; those that are no numbers become 0.
QPainterPath Bounded(const QPainterPath& onCanvas);

// Where an operation closes and fills what it draws.
enum class Parts { Outline = 1, Inside = 2, Both = 3 };

// Coordinates are logical units unless another unit is named.
class DeviceContext {
  public:
    DeviceContext(Surface& surface, const Placement& placement, const Mapping& mapping);

    DrawingState& State() { return state_; }
    const DrawingState& State() const { return state_; }
    ObjectTable& Objects() { return objects_; }
    Surface& Canvas() { return surface_; }
    const Placement& Place() const { return placement_; }

    void Save();
    void Restore(int level); // below 0 counts from the top, above 0 from the bottom
    void Select(std::uint32_t slot);

    // To canvas pixels, bounded so that what is drawn with them costs no more than what can be seen.
    QTransform ToCanvas() const;
    QTransform DeviceToCanvas() const { return placement_.toCanvas; }
    QPainterPath OnCanvas(const QPainterPath& path) const;
    QPointF OnCanvas(QPointF point) const;
    QPainterPath DeviceOnCanvas(const QPainterPath& path) const; // from device units

    // Half a unit: integers name the middle of pixels for lines and their corners for areas. At most half a
    // pixel of the picture, in canvas pixels.
    QPointF HalfUnit() const;

    // Draws, or adds to the path where one is open.
    void Draw(const QPainterPath& shape, Parts parts);
    // As above, for shapes made by `make` from a rectangle whose last row and column lie outside.
    template <class Make>
    void DrawInRectangle(const QRectF& rectangle, Parts parts, const Make& make) {
        DrawShapes(make(rectangle), make(Inset(rectangle)), parts);
    }
    void LineTo(QPointF point);
    void MoveTo(QPointF point);
    // Goes on from the position, where `path` starts; its end becomes the position.
    void DrawOnwards(const QPainterPath& path);
    void SetPixel(QPointF point, QRgb colour);

    void BeginPath();
    void EndPath() { pathIsOpen_ = false; }
    void AbortPath();
    void CloseFigure();
    void FlattenPath();
    void WidenPath();
    void DrawPath(Parts parts); // and forgets it
    QPainterPath TakePath();    // in canvas pixels

    void Fill(const QPainterPath& onCanvas, const Brush& brush);
    void FillWith(const QPainterPath& onCanvas, const QBrush& brush, int operation);
    void DrawOutlines(const QPainterPath& onCanvas, const QColor& colour); // or adds them to the open path
    void Stroke(const QPainterPath& onCanvas, const Pen& pen);
    void Put(const Stamp& stamp);
    void PutImage(QPoint at, const QImage& image);

    // The painter's brush, standing where the state's brush origin is.
    QBrush PaintBrush(const Brush& brush) const;

    // How clip regions combine: the operations' numbers in files.
    enum class Combine { And = 1, Or = 2, Xor = 3, Difference = 4, Copy = 5 };
    void Clip(const QRegion& onCanvas, Combine combine);
    void ClearClip() { SetClip(std::nullopt); }
    void SetClip(const std::optional<QRegion>& region);
    void OffsetClip(QPointF offset);
    void MoveClipToMeta(); // the clip so far holds for good, and a new one begins
    void Clip(const QPainterPath& onCanvas, Combine combine);
    QRegion RegionOf(const QPainterPath& onCanvas); // of whole pixels of the canvas

  private:
    void DrawShapes(const QPainterPath& inside, const QPainterPath& outline, Parts parts);
    QRectF Inset(const QRectF& rectangle) const;
    double UnitLength() const;
    QPen PaintPen(const Pen& pen) const;
    void StrokeBackground(const QPainterPath& onCanvas, const Pen& pen, const QPen& painted);
    void ApplyClip();

    Surface& surface_;
    Placement placement_;
    DrawingState state_;
    ObjectTable objects_;
    std::vector<DrawingState> saved_;
    QPainterPath path_; // canvas pixels
    bool pathIsOpen_ = false;
    bool clipChanged_ = false;
};

} // namespace pictorel::metafile
