// The canvas that a metafile is drawn on, see PaintedSurface.h.
#include "picture/metafile/canvas/PaintedSurface.h"

#include "picture/ForEachBand.h"
#include "picture/codecs/PixelSupport.h"
#include "picture/metafile/canvas/PaintingWork.h"

#include <algorithm>
#include <utility>

namespace pictorel::metafile {
namespace {

QImage ImageIn(PixelArray& memory) {
    return {memory.WritableRows(), memory.Width(), memory.Height(), memory.Stride(), QImage::Format_RGB32};
}

std::uint32_t MeanOf(const std::uint32_t* pixels, std::ptrdiff_t stride, int side) {
    unsigned blue = 0;
    unsigned green = 0;
    unsigned red = 0;
    for (int y = 0; y < side; ++y, pixels += stride) {
        for (int x = 0; x < side; ++x) {
            blue += pixels[x] & 0xFFU;
            green += pixels[x] >> 8 & 0xFFU;
            red += pixels[x] >> 16 & 0xFFU;
        }
    }
    const auto count = static_cast<unsigned>(side * side);
    const auto mean = [count](unsigned sum) { return (sum + count / 2) / count; };
    return 0xFF000000U | mean(red) << 16 | mean(green) << 8 | mean(blue);
}

} // namespace

PaintedSurface::PaintedSurface(QSize picture, int scale, double work)
    : memory_(picture.width() * scale, picture.height() * scale),
      canvas_(ImageIn(memory_)),
      scale_(scale),
      work_(work) {
    canvas_.fill(Qt::white);
    painter_.begin(&canvas_);
}

QRect PaintedSurface::Reached(const QRectF& area) const {
    QRectF reached = area & QRectF(canvas_.rect());
    if (painter_.hasClipping()) {
        reached &= painter_.clipBoundingRect();
    }
    return reached.isEmpty() ? QRect() : reached.toAlignedRect() & canvas_.rect();
}

void PaintedSurface::Fill(const QPainterPath& path, const QBrush& brush, int operation) {
    const QRect area = Reached(path.controlPointRect());
    Spend(FillWork(path, brush, area) + UnderClip(area));
    if (IsExhausted() || area.isEmpty()) {
        return;
    }
    painter_.setCompositionMode(CompositionOf(operation));
    painter_.fillPath(path, brush);
    isPainted_ = true;
}

void PaintedSurface::Stroke(const QPainterPath& path, const QPen& pen, int operation) {
    const double reach = pen.widthF() * std::max(1.0, pen.miterLimit());
    const QRect area = Reached(path.controlPointRect().adjusted(-reach, -reach, reach, reach));
    Spend(StrokeWork(path, pen, area) + UnderClip(area));
    if (IsExhausted() || area.isEmpty()) {
        return;
    }
    painter_.setCompositionMode(CompositionOf(operation));
    painter_.strokePath(path, pen);
    isPainted_ = true;
}

void PaintedSurface::PutImage(QPoint at, const QImage& image) {
    Spend(image.width() * 2.0 * image.height() + UnderClip({at, image.size()}));
    if (!IsExhausted()) {
        painter_.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter_.drawImage(at, image);
        isPainted_ = true;
    }
}

// Where a region is ragged, the painter takes it as a path: for a region as such it sets aside room for every
// one of its rectangles in every row, which is gigabytes for a few ten thousand of them.
void PaintedSurface::SetClip(const std::optional<QRegion>& region) {
    constexpr int kPlainRectangles = 64;
    clipRectangles_ = region ? region->rectCount() : 0;
    Spend(ClippingWork(clipRectangles_));
    if (IsExhausted()) {
        return;
    }
    if (!region) {
        painter_.setClipping(false);
    } else if (clipRectangles_ <= kPlainRectangles) {
        painter_.setClipRegion(*region);
    } else {
        QPainterPath outline;
        outline.addRegion(*region);
        painter_.setClipPath(outline);
    }
}

// What the clip adds to painting in an area.
double PaintedSurface::UnderClip(const QRect& area) const {
    constexpr double kPerRectangle = 20;
    const double share = std::min(1.0, double(area.height()) / canvas_.height());
    return clipRectangles_ * share * kPerRectangle;
}

PixelArray PaintedSurface::Finish() {
    painter_.end();
    if (scale_ == 1) {
        codecs::MakeOpaque(memory_);
        return std::move(memory_);
    }
    PixelArray picture(canvas_.width() / scale_, canvas_.height() / scale_);
    std::uint8_t* const rows = picture.WritableRows();
    ForEachBand(picture.Height(), picture.RowBytes() * static_cast<std::size_t>(scale_ * scale_ + 1),
                [&](int first, int end) {
                    for (int y = first; y < end; ++y) {
                        const auto* from =
                            reinterpret_cast<const std::uint32_t*>(canvas_.constScanLine(y * scale_));
                        auto* to = reinterpret_cast<std::uint32_t*>(rows + y * picture.Stride());
                        for (int x = 0; x < picture.Width(); ++x, from += scale_, ++to) {
                            *to = MeanOf(from, canvas_.bytesPerLine() / 4, scale_);
                        }
                    }
                });
    return picture;
}

} // namespace pictorel::metafile
