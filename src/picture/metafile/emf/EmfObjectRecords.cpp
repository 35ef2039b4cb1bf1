// Records of enhanced metafiles that make, select and free pens, brushes, fonts and palettes.
#include "picture/metafile/ObjectFields.h"
#include "picture/metafile/emf/EmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

constexpr std::size_t kSlot = 8;

void SelectObject(DeviceContext& dc, const Fields& f) {
    dc.Select(f.UInt(kSlot));
}

void DeleteObject(DeviceContext& dc, const Fields& f) {
    dc.Objects().Remove(f.UInt(kSlot));
}

void CreatePen(DeviceContext& dc, const Fields& f) {
    dc.Objects().Put(f.UInt(kSlot), MakePen({f.UInt(12), std::abs(double(f.Int(16))), f.Colour(24)}));
}

void ExtCreatePen(DeviceContext& dc, const Fields& f) {
    constexpr std::uint32_t kGeometric = 0x10000;
    constexpr std::uint32_t kSolidBrush = 0;
    constexpr std::size_t kEntries = 52;
    Pen pen = MakePen({f.UInt(28), double(f.UInt(32)), f.Colour(40)});
    pen.isGeometric = (f.UInt(28) & kGeometric) != 0;
    if (!pen.isGeometric) {
        pen.width = 0; // counted in pixels, and always one
    } else if (f.UInt(36) != kSolidBrush) {
        pen.brush = MakeBrush(f.UInt(36), f.Colour(40), static_cast<int>(f.UInt(44)));
        if (f.UInt(16) != 0) {
            pen.brush =
                MakePatternBrush(Bitmap(f.Part(f.UInt(12), f.UInt(16)), f.Part(f.UInt(20), f.UInt(24))));
        }
    }
    const std::size_t entries = f.CountOf(f.UInt(48), kEntries, 4);
    for (std::size_t i = 0; i < std::min<std::size_t>(entries, 16); ++i) {
        pen.dashes.push_back(f.UInt(kEntries + 4 * i));
    }
    dc.Objects().Put(f.UInt(kSlot), std::move(pen));
}

void CreateBrush(DeviceContext& dc, const Fields& f) {
    dc.Objects().Put(f.UInt(kSlot), MakeBrush(f.UInt(12), f.Colour(16), f.Int(20)));
}

Bitmap PatternOf(const DeviceContext& dc, const Fields& f) {
    const bool indexed = f.UInt(12) == 1;
    return {f.Part(f.UInt(16), f.UInt(20)), f.Part(f.UInt(24), f.UInt(28)), indexed,
            dc.State().palette->colours};
}

void CreateDibPatternBrush(DeviceContext& dc, const Fields& f) {
    dc.Objects().Put(f.UInt(kSlot), MakePatternBrush(PatternOf(dc, f)));
}

void CreateMonoBrush(DeviceContext& dc, const Fields& f) {
    Brush brush = MakePatternBrush(PatternOf(dc, f));
    if (brush.kind == BrushKind::Pattern) {
        brush.kind = BrushKind::Mono;
    }
    dc.Objects().Put(f.UInt(kSlot), std::move(brush));
}

void CreateFont(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kLogicalFont = 12;
    constexpr std::size_t kFace = kLogicalFont + 28;
    constexpr std::size_t kFaceLetters = 32;
    Font font;
    font.height = f.Int(kLogicalFont);
    font.width = f.Int(kLogicalFont + 4);
    font.escapement = f.Int(kLogicalFont + 8) / 10.0;
    font.weight = f.Int(kLogicalFont + 16);
    font.italic = f.Byte(kLogicalFont + 20) != 0;
    font.underlined = f.Byte(kLogicalFont + 21) != 0;
    font.struckOut = f.Byte(kLogicalFont + 22) != 0;
    font.charset = f.Byte(kLogicalFont + 23);
    for (std::size_t i = 0; i < kFaceLetters && f.Word(kFace + 2 * i) != 0; ++i) {
        font.face += QChar(f.Word(kFace + 2 * i));
    }
    dc.Objects().Put(f.UInt(kSlot), std::move(font));
}

void SelectPalette(DeviceContext& dc, const Fields& f) {
    dc.Select(f.UInt(kSlot));
}

void CreatePalette(DeviceContext& dc, const Fields& f) {
    dc.Objects().Put(f.UInt(kSlot), MakePalette(f, 12));
}

constexpr std::array kRows{
    EmfRow{EmfType::SelectObject, 12, RecordKind::Setting, SelectObject},
    EmfRow{EmfType::DeleteObject, 12, RecordKind::Setting, DeleteObject},
    EmfRow{EmfType::CreatePen, 28, RecordKind::Setting, CreatePen},
    EmfRow{EmfType::ExtCreatePen, 52, RecordKind::Setting, ExtCreatePen},
    EmfRow{EmfType::CreateBrush, 24, RecordKind::Setting, CreateBrush},
    EmfRow{EmfType::CreateDibPatternBrush, 32, RecordKind::Setting, CreateDibPatternBrush},
    EmfRow{EmfType::CreateMonoBrush, 32, RecordKind::Setting, CreateMonoBrush},
    EmfRow{EmfType::CreateFont, 104, RecordKind::Setting, CreateFont},
    EmfRow{EmfType::SelectPalette, 12, RecordKind::Setting, SelectPalette},
    EmfRow{EmfType::CreatePalette, 16, RecordKind::Setting, CreatePalette},
};

} // namespace

std::span<const EmfRow> EmfObjectRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
