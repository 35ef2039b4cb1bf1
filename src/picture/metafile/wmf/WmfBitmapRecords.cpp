// Records of Windows metafiles that draw bitmaps.
#include "picture/metafile/canvas/Stamps.h"
#include "picture/metafile/wmf/WmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

QRectF ReversedBox(const Fields& f, std::size_t at) { // height, width, y, x
    return {ReversedPoint(f, at + 4), QSizeF(f.Short(at + 2), f.Short(at))};
}

Bitmap BitmapAt(const DeviceContext& dc, const Fields& f, std::size_t at, bool indexed = false) {
    return Bitmap::Packed(f.From(at), indexed, dc.State().palette->colours);
}

void PutPart(DeviceContext& dc, const Bitmap& bitmap, const QRectF& part, const QRectF& target,
             const Fields& f) {
    dc.Put(MakeStamp(dc, bitmap, part, target, OperationOf(f.UInt(0))));
}

// Records without a bitmap have a field more that says nothing, and are just as long as these fields.
constexpr std::size_t kBlockWithoutBitmap = 18;
constexpr std::size_t kStretchWithoutBitmap = 22;

void PutPattern(DeviceContext& dc, const Fields& f, std::size_t targetAt) {
    dc.Put(MakePatternStamp(dc, ReversedBox(f, targetAt), OperationOf(f.UInt(0))));
}

void DibBitBlt(DeviceContext& dc, const Fields& f) {
    if (f.Size() <= kBlockWithoutBitmap) {
        PutPattern(dc, f, 10);
        return;
    }
    const QRectF target = ReversedBox(f, 8);
    PutPart(dc, BitmapAt(dc, f, 16), {ReversedPoint(f, 4), target.size()}, target, f);
}

void DibStretchBlt(DeviceContext& dc, const Fields& f) {
    if (f.Size() <= kStretchWithoutBitmap) {
        PutPattern(dc, f, 14);
        return;
    }
    PutPart(dc, BitmapAt(dc, f, 20), ReversedBox(f, 4), ReversedBox(f, 12), f);
}

void BitBlt(DeviceContext& dc, const Fields& f) {
    if (f.Size() <= kBlockWithoutBitmap) {
        PutPattern(dc, f, 10);
    } else if (const auto bitmap = Bitmap::OfDevice(f.From(16))) {
        const QRectF target = ReversedBox(f, 8);
        PutPart(dc, *bitmap, {ReversedPoint(f, 4), target.size()}, target, f);
    }
}

void StretchBlt(DeviceContext& dc, const Fields& f) {
    if (f.Size() <= kStretchWithoutBitmap) {
        PutPattern(dc, f, 14);
    } else if (const auto bitmap = Bitmap::OfDevice(f.From(20))) {
        PutPart(dc, *bitmap, ReversedBox(f, 4), ReversedBox(f, 12), f);
    }
}

void StretchDib(DeviceContext& dc, const Fields& f) {
    const Bitmap bitmap = BitmapAt(dc, f, 22, f.Word(4) == 1);
    PutPart(dc, bitmap, FromFirstRow(bitmap, ReversedBox(f, 6)), ReversedBox(f, 14), f);
}

void SetDibToDevice(DeviceContext& dc, const Fields& f) {
    const QRectF part(ReversedPoint(f, 6), QSizeF(f.Word(12), f.Word(10)));
    PutScanLines(dc, BitmapAt(dc, f, 18, f.Word(0) == 1), {ReversedPoint(f, 14), part, f.Word(4), f.Word(2)});
}

void PatBlt(DeviceContext& dc, const Fields& f) {
    PutPattern(dc, f, 4);
}

constexpr std::array kRows{
    WmfRow{WmfType::DibBitBlt, 16, RecordKind::Bitmap, DibBitBlt},
    WmfRow{WmfType::DibStretchBlt, 20, RecordKind::Bitmap, DibStretchBlt},
    WmfRow{WmfType::BitBlt, 16, RecordKind::Bitmap, BitBlt},
    WmfRow{WmfType::StretchBlt, 20, RecordKind::Bitmap, StretchBlt},
    WmfRow{WmfType::StretchDib, 22, RecordKind::Bitmap, StretchDib},
    WmfRow{WmfType::SetDibToDevice, 18, RecordKind::Bitmap, SetDibToDevice},
    WmfRow{WmfType::PatBlt, 12, RecordKind::Drawing, PatBlt},
};

} // namespace

std::span<const WmfRow> WmfBitmapRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
