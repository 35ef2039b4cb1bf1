// Reads Windows metafiles, see Metafile.h.
#include "picture/codecs/PixelSupport.h"
#include "picture/metafile/Drawing.h"
#include "picture/metafile/Metafile.h"
#include "picture/metafile/wmf/WmfRecords.h"

#include <algorithm>
#include <optional>

namespace pictorel::metafile {
namespace {

using codecs::ByteView;
using codecs::LittleEndian16;
using codecs::LittleEndian32;

constexpr QPointF kScreen{96 / 25.4, 96 / 25.4}; // dots a millimetre

bool HasPlaceableHeader(ByteView file) {
    return LittleEndian32(file, 0) == kPlaceableKey;
}

ByteView WithoutPlaceableHeader(ByteView file) {
    return HasPlaceableHeader(file) ? codecs::Slice(file, kPlaceableHeaderBytes) : file;
}

struct Record {
    std::uint16_t type;
    Fields fields;
    bool isWhole;
};

// Walks the records in file order. The last one may be cut short by the end of the file.
class Records {
  public:
    explicit Records(ByteView file) {
        const ByteView header = WithoutPlaceableHeader(file);
        rest_ = codecs::Slice(header, std::size_t{2} * LittleEndian16(header, 2));
    }

    std::optional<Record> Next() {
        constexpr std::size_t kHeadBytes = 6;
        const std::size_t bytes = std::size_t{2} * LittleEndian32(rest_, 0);
        const std::uint16_t type = LittleEndian16(rest_, 4);
        isWhole_ = rest_.size() >= kHeadBytes && type == static_cast<int>(WmfType::EndOfFile);
        if (rest_.size() < kHeadBytes || bytes < kHeadBytes || isWhole_) {
            return std::nullopt;
        }
        const Record record{type, Fields(codecs::Slice(rest_, kHeadBytes, bytes - kHeadBytes)),
                            bytes <= rest_.size()};
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
bool CanBePlayed(const WmfRow* row, const Record& record) {
    return row != nullptr && record.fields.Size() >= row->leastBytes &&
           (record.isWhole || row->kind == RecordKind::Bitmap);
}

// What the first records of each kind say about the coordinates.
struct Content {
    bool draws = false;
    bool hasBitmaps = false;
    bool isOnlyBitmaps = true;
    std::optional<QPointF> windowOrigin{};
    std::optional<QPointF> windowExtent{};
    std::optional<QPointF> viewportOrigin{};
    std::optional<QPointF> viewportExtent{};
};

void NoteCoordinates(Content& content, const Record& record) {
    const struct {
        WmfType type;
        std::optional<QPointF>& value;
    } rows[] = {{WmfType::SetWindowOrg, content.windowOrigin},
                {WmfType::SetWindowExt, content.windowExtent},
                {WmfType::SetViewportOrg, content.viewportOrigin},
                {WmfType::SetViewportExt, content.viewportExtent}};
    for (const auto& row : rows) {
        if (record.type == static_cast<int>(row.type) && !row.value) {
            row.value = ReversedPoint(record.fields, 0);
        }
    }
}

Content ContentOf(ByteView file) {
    Content content;
    Records records(file);
    while (const auto record = records.Next()) {
        NoteCoordinates(content, *record);
        const WmfRow* const row = FindWmfRow(record->type);
        if (CanBePlayed(row, *record) && row->kind != RecordKind::Setting) {
            content.draws = true;
            const bool isBitmap = row->kind == RecordKind::Bitmap;
            content.hasBitmaps |= isBitmap;
            content.isOnlyBitmaps &= isBitmap;
        }
    }
    return content;
}

// Files without their last record were cut short; their header says how long they should be.
double PartPresent(ByteView file, const Records& atEnd) {
    constexpr double kAlmostAll = 0.99;
    const double claimed = double(std::size_t{2} * LittleEndian32(WithoutPlaceableHeader(file), 6));
    return atEnd.IsWhole() || claimed <= 0 ? 1 : std::min(kAlmostAll, double(file.size()) / claimed);
}

double Play(ByteView file, DeviceContext& context) {
    Records records(file);
    while (const auto record = records.Next()) {
        const WmfRow* const row = FindWmfRow(record->type);
        if (CanBePlayed(row, *record)) {
            row->play(context, record->fields);
        }
        if (context.Canvas().IsExhausted()) {
            return 1 - double(records.BytesLeft()) / double(file.size());
        }
    }
    return PartPresent(file, records);
}

// The rectangle of the placeable header, and what it measures on paper.
struct Frame {
    QRectF box;
    QSizeF inches;
};

Frame PlaceableFrame(ByteView file) {
    const Fields header(file);
    const QRectF box(header.Point16(6), header.Point16(10)); // turned round where its axes are
    const double unitsPerInch = header.Word(14) == 0 ? 1440 : header.Word(14);
    return {box, box.normalized().size() / unitsPerInch};
}

// The device is the sheet that the drawing fills: its units are those of the viewport where the file sets
// one, and otherwise pixels (or the window's own units where the file does not say how large it is).
void SetSheet(Drawing& drawing, ByteView file, const Content& content) {
    Frame frame;
    if (HasPlaceableHeader(file)) {
        frame = PlaceableFrame(file);
    }
    const QPointF extent = content.windowExtent.value_or(QPointF(frame.box.width(), frame.box.height()));
    if (extent.x() == 0 || extent.y() == 0) {
        return; // the drawing's own extents will do
    }
    const QSizeF window(std::abs(extent.x()), std::abs(extent.y()));
    drawing.inches = frame.inches;
    QSizeF viewport = frame.inches.isEmpty() ? window : frame.inches * 25.4 * kScreen.x();
    QPointF corner;
    if (content.viewportExtent && content.viewportExtent->x() != 0 && content.viewportExtent->y() != 0) {
        viewport = {std::abs(content.viewportExtent->x()), std::abs(content.viewportExtent->y())};
        corner = content.viewportOrigin.value_or(QPointF());
    }
    drawing.sheet = QRectF(corner, viewport);
    drawing.mapping.SetWindowOrigin(content.windowOrigin.value_or(frame.box.topLeft()));
    drawing.mapping.SetWindowExtent(extent);
    drawing.mapping.SetViewportOrigin(corner);
    drawing.mapping.SetViewportExtent({viewport.width(), viewport.height()});
}

} // namespace

bool IsWmf(ByteView file) noexcept {
    if (HasPlaceableHeader(file)) {
        return file.size() >= kPlaceableHeaderBytes;
    }
    const int type = LittleEndian16(file, 0);
    const int version = LittleEndian16(file, 4);
    return (type == 1 || type == 2) && LittleEndian16(file, 2) == kWmfHeaderBytes / 2 &&
           (version == 0x0100 || version == 0x0300);
}

PixelArray ReadWmf(ByteView file, const codecs::ReadOptions& /*options*/) {
    if (!IsWmf(file)) {
        codecs::Refuse("The file is no Windows metafile.");
    }
    const Content content = ContentOf(file);
    if (!content.draws) {
        codecs::Refuse("The metafile draws nothing.");
    }
    Drawing drawing(kScreen);
    drawing.play = [file](DeviceContext& context) { return Play(file, context); };
    drawing.mapping.SetMode(kAnisotropic);
    drawing.hasBitmaps = content.hasBitmaps;
    drawing.isOnlyBitmaps = content.isOnlyBitmaps;
    drawing.fileBytes = file.size();
    SetSheet(drawing, file, content);
    return Played(drawing);
}

} // namespace pictorel::metafile
