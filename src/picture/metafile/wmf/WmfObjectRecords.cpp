// Records of Windows metafiles that make, select and free pens, brushes, fonts, palettes and regions.
#include "picture/metafile/ObjectFields.h"
#include "picture/metafile/wmf/WmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

void SelectObject(DeviceContext& dc, const Fields& f) {
    dc.Select(f.Word(0));
}

void DeleteObject(DeviceContext& dc, const Fields& f) {
    dc.Objects().Remove(f.Word(0));
}

void CreatePen(DeviceContext& dc, const Fields& f) {
    dc.Objects().Add(MakePen({f.Word(0), std::abs(double(f.Short(2))), f.Colour(6)}));
}

void CreateBrush(DeviceContext& dc, const Fields& f) {
    dc.Objects().Add(MakeBrush(f.Word(0), f.Colour(2), f.Word(6)));
}

void DibCreatePatternBrush(DeviceContext& dc, const Fields& f) {
    const bool indexed = f.Word(2) == 1;
    dc.Objects().Add(MakePatternBrush(Bitmap::Packed(f.From(4), indexed, dc.State().palette->colours)));
}

// The bitmap's own header is padded to 32 bytes.
void CreatePatternBrush(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kHeaderBytes = 10;
    constexpr std::size_t kPaddedBytes = 32;
    const codecs::ByteView header = f.Part(0, kHeaderBytes);
    const codecs::ByteView pixels = f.From(kPaddedBytes);
    codecs::ByteBuffer bytes(header.begin(), header.end());
    bytes.insert(bytes.end(), pixels.begin(), pixels.end());
    const auto bitmap = Bitmap::OfDevice(bytes);
    Brush brush = bitmap ? MakePatternBrush(*bitmap) : Brush{.kind = BrushKind::None};
    if (bitmap && bitmap->Depth() == 1 && brush.kind == BrushKind::Pattern) {
        brush.kind = BrushKind::Mono;
    }
    dc.Objects().Add(std::move(brush));
}

void CreateFont(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kFace = 18;
    constexpr std::size_t kFaceLetters = 32;
    Font font;
    font.height = f.Short(0);
    font.width = f.Short(2);
    font.escapement = f.Short(4) / 10.0;
    font.weight = f.Short(8);
    font.italic = f.Byte(10) != 0;
    font.underlined = f.Byte(11) != 0;
    font.struckOut = f.Byte(12) != 0;
    font.charset = f.Byte(13);
    for (std::size_t i = 0; i < kFaceLetters && f.Byte(kFace + i) != 0; ++i) {
        font.face += QLatin1Char(static_cast<char>(f.Byte(kFace + i)));
    }
    dc.Objects().Add(std::move(font));
}

void CreatePalette(DeviceContext& dc, const Fields& f) {
    dc.Objects().Add(MakePalette(f, 0));
}

// Scan by scan: how many borders, top, bottom, the borders in pairs, and the count once more.
void CreateRegion(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kScans = 22;
    RegionShape region;
    std::size_t at = kScans;
    for (int scan = 0; scan < f.Short(10) && at + 8 <= f.Size(); ++scan) {
        const std::size_t borders = f.CountOf(f.Word(at), at + 6, 2);
        for (std::size_t i = 0; i + 1 < borders; i += 2) {
            const std::size_t pair = at + 6 + 2 * i;
            region.rectangles.emplace_back(QPointF(f.Word(pair), f.Word(at + 2)),
                                           QPointF(f.Word(pair + 2), f.Word(at + 4)));
        }
        at += 8 + 2 * borders;
    }
    dc.Objects().Add(std::move(region));
}

constexpr std::array kRows{
    WmfRow{WmfType::SelectObject, 2, RecordKind::Setting, SelectObject},
    WmfRow{WmfType::SelectPalette, 2, RecordKind::Setting, SelectObject},
    WmfRow{WmfType::DeleteObject, 2, RecordKind::Setting, DeleteObject},
    WmfRow{WmfType::CreatePen, 10, RecordKind::Setting, CreatePen},
    WmfRow{WmfType::CreateBrush, 8, RecordKind::Setting, CreateBrush},
    WmfRow{WmfType::DibCreatePatternBrush, 4, RecordKind::Setting, DibCreatePatternBrush},
    WmfRow{WmfType::CreatePatternBrush, 32, RecordKind::Setting, CreatePatternBrush},
    WmfRow{WmfType::CreateFont, 18, RecordKind::Setting, CreateFont},
    WmfRow{WmfType::CreatePalette, 4, RecordKind::Setting, CreatePalette},
    WmfRow{WmfType::CreateRegion, 22, RecordKind::Setting, CreateRegion},
};

} // namespace

std::span<const WmfRow> WmfObjectRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
