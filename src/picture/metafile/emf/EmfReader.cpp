// Reads enhanced metafiles, see Metafile.h.
#include "picture/codecs/PixelSupport.h"
#include "picture/metafile/Drawing.h"
#include "picture/metafile/Metafile.h"
#include "picture/metafile/emf/EmfRecords.h"

#include <algorithm>
#include <optional>

namespace pictorel::metafile {
namespace {

using codecs::ByteView;

constexpr std::size_t kLeastHeaderBytes = 88;
constexpr std::size_t kSignatureAt = 40;

struct Record {
    std::uint32_t type;
    ByteView bytes;
    bool isWhole;
};

// Walks the records in file order. The last one may be cut short by the end of the file.
class Records {
  public:
    explicit Records(ByteView file) : rest_(file) {}

    std::optional<Record> Next() {
        constexpr std::uint32_t kLeastBytes = 8;
        const std::uint32_t type = codecs::LittleEndian32(rest_, 0);
        const std::uint32_t bytes = codecs::LittleEndian32(rest_, 4);
        isWhole_ = type == static_cast<std::uint32_t>(EmfType::EndOfFile);
        if (rest_.size() < kLeastBytes || bytes < kLeastBytes || isWhole_) {
            return std::nullopt;
        }
        const Record record{type, codecs::Slice(rest_, 0, bytes), bytes <= rest_.size()};
        rest_ = codecs::Slice(rest_, bytes);
        return record;
    }

    std::size_t BytesLeft() const { return rest_.size(); }
    bool IsWhole() const { return isWhole_; } // once there is no next: the last one said that it is

  private:
    ByteView rest_;
    bool isWhole_ = false;
};

// A bitmap that is cut short still shows its first rows.
bool CanBePlayed(const EmfRow* row, const Record& record) {
    return row != nullptr && record.bytes.size() >= row->leastBytes &&
           (record.isWhole || row->kind == RecordKind::Bitmap);
}

struct Content {
    bool draws = false;
    bool hasBitmaps = false;
    bool isOnlyBitmaps = true;
    bool hasNewRecords = false; // of the newer drawing interface, inside comments
};

Content ContentOf(ByteView file) {
    Content content;
    Records records(file);
    while (const auto record = records.Next()) {
        const EmfRow* const row = FindEmfRow(record->type);
        if (CanBePlayed(row, *record) && row->kind != RecordKind::Setting) {
            content.draws = true;
            const bool isBitmap = row->kind == RecordKind::Bitmap;
            content.hasBitmaps |= isBitmap;
            content.isOnlyBitmaps &= isBitmap;
        }
        content.hasNewRecords |= record->type == static_cast<std::uint32_t>(EmfType::Comment) &&
                                 codecs::LittleEndian32(record->bytes, 12) == kEmfPlusSignature;
    }
    return content;
}

// Files without their last record were cut short; their header says how long they should be.
double PartPresent(ByteView file, const Records& atEnd) {
    constexpr double kAlmostAll = 0.99;
    const double claimed = double(codecs::LittleEndian32(file, 48));
    return atEnd.IsWhole() || claimed <= 0 ? 1 : std::min(kAlmostAll, double(file.size()) / claimed);
}

double Play(ByteView file, DeviceContext& context) {
    Records records(file);
    while (const auto record = records.Next()) {
        const EmfRow* const row = FindEmfRow(record->type);
        if (CanBePlayed(row, *record)) {
            row->play(context, Fields(record->bytes));
        }
        if (context.Canvas().IsExhausted()) {
            return 1 - double(records.BytesLeft()) / double(file.size());
        }
    }
    return PartPresent(file, records);
}

// Device pixels a millimetre. Files that do not tell were made for the usual screen.
QPointF DeviceResolution(const Fields& header) {
    const auto dots = [&](std::size_t pixelsAt, std::size_t millimetresAt) {
        const std::int32_t pixels = header.Int(pixelsAt);
        const std::int32_t millimetres = header.Int(millimetresAt);
        return pixels > 0 && millimetres > 0 ? double(pixels) / millimetres : 96 / 25.4;
    };
    return {dots(72, 80), dots(76, 84)};
}

// The frame where there is one, else what the file says its drawing bounds are.
void SetSheet(Drawing& drawing, const Fields& header) {
    constexpr double kFrameUnits = 100; // a millimetre
    const QPointF dots = drawing.dotsPerMillimetre;
    const QRectF frame = header.Rect32(24);
    const QRectF bounds = header.Rect32(8).adjusted(0, 0, 1, 1); // both ends lie inside
    drawing.sheet =
        frame.isEmpty()
            ? bounds
            : QRectF(frame.x() * dots.x() / kFrameUnits, frame.y() * dots.y() / kFrameUnits,
                     frame.width() * dots.x() / kFrameUnits, frame.height() * dots.y() / kFrameUnits);
    drawing.inches = {drawing.sheet.width() / dots.x() / 25.4, drawing.sheet.height() / dots.y() / 25.4};
    if (frame.isEmpty() && header.Rect32(8).isEmpty()) {
        drawing.sheet = QRectF();
    }
}

} // namespace

bool IsEmf(ByteView file) noexcept {
    return codecs::LittleEndian32(file, 0) == static_cast<std::uint32_t>(EmfType::Header) &&
           codecs::LittleEndian32(file, 4) >= kLeastHeaderBytes &&
           codecs::LittleEndian32(file, kSignatureAt) == kEmfSignature;
}

PixelArray ReadEmf(ByteView file, const codecs::ReadOptions& /*options*/) {
    if (!IsEmf(file) || file.size() < kLeastHeaderBytes) {
        codecs::Refuse("The file is no enhanced metafile.");
    }
    const Content content = ContentOf(file);
    if (!content.draws) {
        codecs::Refuse(content.hasNewRecords
                           ? "The metafile holds only records of a kind (EMF+) that this editor cannot draw."
                           : "The metafile draws nothing.");
    }
    const Fields header(file);
    Drawing drawing(DeviceResolution(header));
    drawing.play = [file](DeviceContext& context) { return Play(file, context); };
    drawing.hasBitmaps = content.hasBitmaps;
    drawing.isOnlyBitmaps = content.isOnlyBitmaps;
    drawing.fileBytes = file.size();
    SetSheet(drawing, header);
    return Played(drawing);
}

} // namespace pictorel::metafile
