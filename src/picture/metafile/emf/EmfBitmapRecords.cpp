// Records of enhanced metafiles that draw bitmaps and colour gradients.
#include "picture/metafile/canvas/Gradient.h"
#include "picture/metafile/canvas/Stamps.h"
#include "picture/metafile/emf/EmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

QRectF Box(const Fields& f, std::size_t at) { // x, y, width, height
    return {f.Point32(at), QSizeF(f.Int(at + 8), f.Int(at + 12))};
}

// From four fields: where header and pixels stand in the record, and their lengths.
Bitmap BitmapAt(const DeviceContext& dc, const Fields& f, std::size_t at, std::uint32_t colourUsage) {
    const bool indexed = colourUsage == 1;
    return {f.Part(f.UInt(at), f.UInt(at + 4)), f.Part(f.UInt(at + 8), f.UInt(at + 12)), indexed,
            dc.State().palette->colours};
}

bool HasBitmap(const Fields& f, std::size_t at) {
    return f.UInt(at + 4) != 0;
}

constexpr std::size_t kTarget = 24;
constexpr std::size_t kOperation = 40;
constexpr std::size_t kSource = 44;
constexpr std::size_t kUsage = 80;
constexpr std::size_t kBitmap = 84;
constexpr std::size_t kSourceSize = 100;

Stamp SourceStamp(const DeviceContext& dc, const Fields& f, const Bitmap& bitmap, QSizeF size,
                  TernaryOperation operation) {
    return MakeStamp(dc, bitmap, {f.Point32(kSource), size}, Box(f, kTarget), operation);
}

QSizeF SourceSize(const Fields& f) {
    return {double(f.Int(kSourceSize)), double(f.Int(kSourceSize + 4))};
}

void PutBlock(DeviceContext& dc, const Fields& f, QSizeF sourceSize) {
    const TernaryOperation operation = OperationOf(f.UInt(kOperation));
    if (!HasBitmap(f, kBitmap)) {
        dc.Put(MakePatternStamp(dc, Box(f, kTarget), operation));
        return;
    }
    const Bitmap bitmap = BitmapAt(dc, f, kBitmap, f.UInt(kUsage));
    dc.Put(SourceStamp(dc, f, bitmap, sourceSize, operation));
}

void BitBlt(DeviceContext& dc, const Fields& f) {
    PutBlock(dc, f, Box(f, kTarget).size());
}

void StretchBlt(DeviceContext& dc, const Fields& f) {
    PutBlock(dc, f, SourceSize(f));
}

// Two operations in one number: the upper one where the mask is 0.
void MaskBlt(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kMaskOrigin = 100;
    constexpr std::size_t kMaskBitmap = 112;
    if (!HasBitmap(f, kBitmap) || !HasBitmap(f, kMaskBitmap)) {
        BitBlt(dc, f);
        return;
    }
    const Bitmap bitmap = BitmapAt(dc, f, kBitmap, f.UInt(kUsage));
    const Bitmap mask = BitmapAt(dc, f, kMaskBitmap, 0);
    Stamp stamp = SourceStamp(dc, f, bitmap, Box(f, kTarget).size(), OperationOf(f.UInt(kOperation)));
    stamp.mask = &mask;
    stamp.maskOrigin = f.Point32(kMaskOrigin);
    stamp.whereMaskIsZero = static_cast<TernaryOperation>(f.UInt(kOperation) >> 24);
    if (UsesPattern(stamp.whereMaskIsZero)) {
        stamp.pattern = dc.PaintBrush(*dc.State().brush);
    }
    dc.Put(stamp);
}

// Onto a parallelogram given by three of its corners: those of the bitmap's top left, top right, bottom left.
void PlgBlt(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kPart = 48;
    constexpr std::size_t kPlgBitmap = 96;
    constexpr std::size_t kMaskOrigin = 112;
    constexpr std::size_t kMaskBitmap = 124;
    const QRectF part = Box(f, kPart);
    if (!HasBitmap(f, kPlgBitmap) || part.width() == 0 || part.height() == 0) {
        return;
    }
    const QPointF corner = f.Point32(24);
    const QPointF across = (f.Point32(32) - corner) / part.width();
    const QPointF down = (f.Point32(40) - corner) / part.height();
    const Bitmap bitmap = BitmapAt(dc, f, kPlgBitmap, f.UInt(92));
    const Bitmap mask = BitmapAt(dc, f, kMaskBitmap, 0);
    Stamp stamp = MakeStamp(dc, bitmap, part, part, kCopySource);
    stamp.toCanvas = QTransform::fromTranslate(-part.x(), -part.y()) *
                     QTransform(across.x(), across.y(), down.x(), down.y(), corner.x(), corner.y()) *
                     dc.ToCanvas();
    if (HasBitmap(f, kMaskBitmap)) {
        stamp.mask = &mask;
        stamp.maskOrigin = f.Point32(kMaskOrigin);
    }
    dc.Put(stamp);
}

void SetDiBitsToDevice(DeviceContext& dc, const Fields& f) {
    PutScanLines(dc, BitmapAt(dc, f, 48, f.UInt(64)), {f.Point32(24), Box(f, 32), f.Int(68), f.Int(72)});
}

void StretchDiBits(DeviceContext& dc, const Fields& f) {
    const QRectF target(f.Point32(24), QSizeF(f.Int(72), f.Int(76)));
    const TernaryOperation operation = OperationOf(f.UInt(68));
    if (!HasBitmap(f, 48)) {
        dc.Put(MakePatternStamp(dc, target, operation));
        return;
    }
    const Bitmap bitmap = BitmapAt(dc, f, 48, f.UInt(64));
    dc.Put(MakeStamp(dc, bitmap, FromFirstRow(bitmap, Box(f, 32)), target, operation));
}

void AlphaBlend(DeviceContext& dc, const Fields& f) {
    if (HasBitmap(f, kBitmap)) {
        const Bitmap bitmap = BitmapAt(dc, f, kBitmap, f.UInt(kUsage));
        Stamp stamp = SourceStamp(dc, f, bitmap, SourceSize(f), kCopySource);
        stamp.opacity = f.Byte(kOperation + 2) / 255.0;
        stamp.blendsAlpha = f.Byte(kOperation + 3) == 1;
        dc.Put(stamp);
    }
}

void TransparentBlt(DeviceContext& dc, const Fields& f) {
    if (HasBitmap(f, kBitmap)) {
        const Bitmap bitmap = BitmapAt(dc, f, kBitmap, f.UInt(kUsage));
        Stamp stamp = SourceStamp(dc, f, bitmap, SourceSize(f), kCopySource);
        stamp.transparent = f.Colour(kOperation);
        dc.Put(stamp);
    }
}

void GradientFill(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kVertices = 36;
    constexpr std::size_t kVertexBytes = 16;
    std::vector<GradientVertex> vertices(f.CountOf(f.UInt(24), kVertices, kVertexBytes));
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const std::size_t at = kVertices + i * kVertexBytes;
        vertices[i] = {f.Point32(at), qRgb(f.Word(at + 8) >> 8, f.Word(at + 10) >> 8, f.Word(at + 12) >> 8)};
    }
    const std::size_t meshAt = kVertices + vertices.size() * kVertexBytes;
    const std::uint32_t mode = f.UInt(32);
    const std::size_t corners = mode == kTriangles ? 3 : 2;
    const std::size_t count = f.CountOf(f.UInt(28), meshAt, 4 * corners);
    for (std::size_t i = 0; i < count && !dc.Canvas().IsExhausted(); ++i) {
        std::array<GradientVertex, 3> mesh{};
        for (std::size_t k = 0; k < corners; ++k) {
            const std::uint32_t index = f.UInt(meshAt + 4 * (corners * i + k));
            mesh[k] = index < vertices.size() ? vertices[index] : GradientVertex{};
        }
        mode == kTriangles ? FillTriangle(dc, mesh) : FillGradient(dc, mesh[0], mesh[1], mode == kDownwards);
    }
}

constexpr std::array kRows{
    EmfRow{EmfType::BitBlt, 100, RecordKind::Bitmap, BitBlt},
    EmfRow{EmfType::StretchBlt, 108, RecordKind::Bitmap, StretchBlt},
    EmfRow{EmfType::MaskBlt, 128, RecordKind::Bitmap, MaskBlt},
    EmfRow{EmfType::PlgBlt, 140, RecordKind::Bitmap, PlgBlt},
    EmfRow{EmfType::SetDiBitsToDevice, 76, RecordKind::Bitmap, SetDiBitsToDevice},
    EmfRow{EmfType::StretchDiBits, 80, RecordKind::Bitmap, StretchDiBits},
    EmfRow{EmfType::AlphaBlend, 108, RecordKind::Bitmap, AlphaBlend},
    EmfRow{EmfType::TransparentBlt, 108, RecordKind::Bitmap, TransparentBlt},
    EmfRow{EmfType::GradientFill, 36, RecordKind::Drawing, GradientFill},
};

} // namespace

std::span<const EmfRow> EmfBitmapRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
