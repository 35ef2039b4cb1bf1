// What bitmap records have in common, see Stamps.h.
#include "picture/metafile/canvas/Stamps.h"

namespace pictorel::metafile {
namespace {

QTransform Between(const QRectF& from, const QRectF& to) {
    if (from.width() == 0 || from.height() == 0) {
        return QTransform::fromScale(0, 0);
    }
    return QTransform::fromTranslate(-from.x(), -from.y()) *
           QTransform::fromScale(to.width() / from.width(), to.height() / from.height()) *
           QTransform::fromTranslate(to.x(), to.y());
}

} // namespace

Stamp MakeStamp(const DeviceContext& context, const Bitmap& bitmap, const QRectF& part, const QRectF& target,
                TernaryOperation operation) {
    Stamp stamp = MakePatternStamp(context, part, operation);
    stamp.bitmap = &bitmap;
    stamp.toCanvas = Between(part, target) * context.ToCanvas();
    stamp.part = part.normalized();
    return stamp;
}

Stamp MakePatternStamp(const DeviceContext& context, const QRectF& target, TernaryOperation operation) {
    Stamp stamp;
    stamp.toCanvas = context.ToCanvas();
    stamp.part = target.normalized();
    stamp.operation = operation;
    stamp.pattern = UsesPattern(operation) ? context.PaintBrush(*context.State().brush) : QBrush();
    stamp.smooth = context.State().smoothBitmaps;
    return stamp;
}

QRectF FromFirstRow(const Bitmap& bitmap, const QRectF& part) {
    if (bitmap.IsTopDown()) {
        return part;
    }
    QRectF turned = part;
    turned.moveTop(bitmap.Size().height() - part.y() - part.height());
    return turned;
}

void PutScanLines(DeviceContext& context, Bitmap bitmap, const ScanLines& lines) {
    bitmap.KeepRows(lines.count);
    const QRectF part = FromFirstRow(bitmap, lines.part.translated(0, -double(lines.first)));
    const QPointF corner = context.State().mapping.ToDevice().map(lines.target);
    Stamp stamp = MakeStamp(context, bitmap, part, {corner, lines.part.size()}, kCopySource);
    stamp.toCanvas = Between(part, {corner, lines.part.size()}) * context.DeviceToCanvas();
    context.Put(stamp);
}

} // namespace pictorel::metafile
