// What the bitmap records of both kinds of metafiles have in common.
#pragma once

#include "picture/metafile/canvas/DeviceContext.h"

namespace pictorel::metafile {

// The operation on three operands in the number of 32 bits that records hold.
constexpr TernaryOperation OperationOf(std::uint32_t code) noexcept {
    return static_cast<TernaryOperation>(code >> 16);
}

// `part` of the bitmap, drawn in `target` (logical units). Widths and heights below 0 mirror.
Stamp MakeStamp(const DeviceContext& context, const Bitmap& bitmap, const QRectF& part, const QRectF& target,
                TernaryOperation operation);

// The brush alone in `target`.
Stamp MakePatternStamp(const DeviceContext& context, const QRectF& target, TernaryOperation operation);

// The part of a bitmap that a record gives from the bitmap's own first row: its lowest one, unless it is
// top-down.
QRectF FromFirstRow(const Bitmap& bitmap, const QRectF& part);

// Some rows of a bitmap, in pixels of the device.
struct ScanLines {
    QPointF target; // logical units
    QRectF part;    // counted from the bitmap's own first row
    int first;      // row in the record
    int count;      // of rows in the record
};
void PutScanLines(DeviceContext& context, Bitmap bitmap, const ScanLines& lines);

} // namespace pictorel::metafile
