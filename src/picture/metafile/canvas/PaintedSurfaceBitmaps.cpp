// The canvas that a metafile is drawn on: bitmaps, see PaintedSurface.h.
#include "picture/ImagingError.h"
#include "picture/metafile/canvas/PaintedSurface.h"
#include "picture/metafile/canvas/PlacedBitmap.h"

namespace pictorel::metafile {
namespace {

QImage WithTransparency(const QImage& image, QRgb transparent) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < result.height(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(result.scanLine(y));
        std::replace_if(
            row, row + result.width(),
            [transparent](QRgb pixel) { return ((pixel ^ transparent) & 0xFFFFFFU) == 0; }, 0U);
    }
    return result;
}

// A layer as large as `area` of the canvas, transparent, on which `draw` paints in canvas coordinates.
template <class Draw>
QImage Layer(const QRect& area, const Draw& draw) {
    QImage layer(area.size(), QImage::Format_ARGB32_Premultiplied);
    if (layer.isNull()) {
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to draw this metafile.");
    }
    layer.fill(Qt::transparent);
    QPainter painter(&layer);
    painter.translate(-area.topLeft());
    draw(painter);
    return layer;
}

} // namespace

void PaintedSurface::Put(const Stamp& stamp) {
    if (stamp.bitmap == nullptr) {
        QPainterPath path;
        path.addPolygon(stamp.toCanvas.map(QPolygonF(stamp.part.normalized())));
        if (PlacedBitmap(stamp, scale_).Area().isEmpty() || UsesSource(stamp.operation)) {
            return; // what has no source cannot be mixed with it
        }
        const bool isPlain = !UsesPattern(stamp.operation);
        if (isPlain || stamp.pattern.style() != Qt::NoBrush) {
            Fill(path, isPlain ? QBrush(Qt::black) : stamp.pattern, WithoutSource(stamp.operation));
        }
        return;
    }
    const PlacedBitmap placed(stamp, scale_);
    const QRect area = Reached(placed.Area());
    constexpr double kPerCanvasPixel = 8;
    constexpr double kPerMixedPixel = 30;
    constexpr double kPerBitmapPixel = 4;
    const bool isMixed = stamp.mask != nullptr || stamp.operation != kCopySource;
    Spend((isMixed ? kPerMixedPixel : kPerCanvasPixel) * area.width() * area.height() +
          kPerBitmapPixel * stamp.bitmap->Size().width() * stamp.bitmap->Size().height() + UnderClip(area));
    if (IsExhausted() || area.isEmpty()) {
        return;
    }
    const QImage image = stamp.bitmap->Decode(stamp.blendsAlpha);
    if (image.isNull()) {
        return;
    }
    isPainted_ = true;
    if (stamp.mask == nullptr && stamp.operation == kCopySource) {
        painter_.setCompositionMode(QPainter::CompositionMode_SourceOver);
        painter_.setOpacity(stamp.opacity);
        placed.Draw(painter_, stamp.transparent ? WithTransparency(image, *stamp.transparent) : image);
        painter_.setOpacity(1);
    } else {
        Mix(stamp, placed, image, area);
    }
}

// Operand by operand on layers, pixel by pixel.
void PaintedSurface::Mix(const Stamp& stamp, const PlacedBitmap& placed, const QImage& image,
                         const QRect& area) {
    const QImage source = Layer(area, [&](QPainter& painter) { placed.Draw(painter, image); });
    const QImage pattern = Layer(area, [&](QPainter& painter) { painter.fillRect(area, stamp.pattern); });
    QImage mask;
    if (stamp.mask != nullptr) {
        Spend(4.0 * stamp.mask->Size().width() * stamp.mask->Size().height());
        mask = Layer(area, [&](QPainter& painter) {
            placed.Draw(painter, stamp.mask->Decode(), stamp.part.topLeft() - stamp.maskOrigin);
        });
    }
    QImage result = canvas_.copy(area);
    for (int y = 0; y < area.height(); ++y) {
        const auto* const sources = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        const auto* const patterns = reinterpret_cast<const QRgb*>(pattern.constScanLine(y));
        const auto* const masks =
            mask.isNull() ? nullptr : reinterpret_cast<const QRgb*>(mask.constScanLine(y));
        auto* const row = reinterpret_cast<QRgb*>(result.scanLine(y));
        for (int x = 0; x < area.width(); ++x) {
            if (qAlpha(sources[x]) < 128) { // beside the bitmap
                continue;
            }
            const bool isMasked = masks != nullptr && qGreen(masks[x]) < 128;
            const TernaryOperation operation = isMasked ? stamp.whereMaskIsZero : stamp.operation;
            row[x] = Combined(operation, patterns[x], sources[x], row[x]) | 0xFF000000U;
        }
    }
    painter_.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter_.drawImage(area.topLeft(), result);
}

} // namespace pictorel::metafile
