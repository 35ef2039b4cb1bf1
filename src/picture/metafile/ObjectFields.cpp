// Drawing objects from the fields of records, see ObjectFields.h.
#include "picture/metafile/ObjectFields.h"

#include <array>

namespace pictorel::metafile {
namespace {

constexpr std::uint32_t kNoLine = 5;
constexpr std::uint32_t kInsideFrame = 6;

// In the order of the styles' numbers.
constexpr std::array kStyles{Qt::SolidLine,      Qt::DashLine, Qt::DotLine,   Qt::DashDotLine,
                             Qt::DashDotDotLine, Qt::NoPen,    Qt::SolidLine, Qt::CustomDashLine};
constexpr std::array kCaps{Qt::RoundCap, Qt::SquareCap, Qt::FlatCap, Qt::RoundCap};
constexpr std::array kJoins{Qt::RoundJoin, Qt::BevelJoin, Qt::MiterJoin, Qt::RoundJoin};

template <class Row>
Row Entry(const std::array<Row, 4>& rows, std::uint32_t style, unsigned shift) {
    return rows[style >> shift & 3U];
}

} // namespace

Pen MakePen(const PenFields& fields) {
    constexpr unsigned kCapShift = 8;
    constexpr unsigned kJoinShift = 12;
    const std::uint32_t line = fields.style & 0xFU;
    Pen pen;
    pen.visible = line != kNoLine;
    pen.colour = fields.colour;
    pen.width = fields.width;
    pen.style = line < kStyles.size() ? kStyles[line] : line == 8 ? Qt::DotLine : Qt::SolidLine;
    pen.insideFrame = line == kInsideFrame;
    pen.cap = Entry(kCaps, fields.style, kCapShift);
    pen.join = Entry(kJoins, fields.style, kJoinShift);
    return pen;
}

Brush MakeBrush(std::uint32_t style, QRgb colour, int hatch) {
    constexpr std::uint32_t kNone = 1;
    constexpr std::uint32_t kHatched = 2;
    const BrushKind kind = style == kNone      ? BrushKind::None
                           : style == kHatched ? BrushKind::Hatched
                                               : BrushKind::Solid;
    return {.kind = kind, .colour = colour, .hatch = hatch};
}

Brush MakePatternBrush(const Bitmap& bitmap) {
    constexpr int kLargest = 4096; // on a side: a file of patterns may not take memory without end
    const bool bearable = bitmap.Size().width() <= kLargest && bitmap.Size().height() <= kLargest;
    const QImage image = bearable ? bitmap.Decode() : QImage();
    if (image.isNull()) {
        return {.kind = BrushKind::None};
    }
    return {.kind = BrushKind::Pattern, .pattern = image};
}

Palette MakePalette(const Fields& fields, std::size_t at) {
    constexpr std::size_t kHead = 4;
    Palette palette;
    const std::size_t count = fields.CountOf(fields.Word(at + 2), at + kHead, 4);
    for (std::size_t i = 0; i < count; ++i) {
        palette.colours.push_back(fields.Colour(at + kHead + 4 * i));
    }
    return palette;
}

} // namespace pictorel::metafile
