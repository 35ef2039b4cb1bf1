// Records of enhanced metafiles that draw text.
#include "picture/metafile/canvas/Text.h"
#include "picture/metafile/emf/EmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

enum class Letters { Narrow, Wide };

// The usual fonts of the system these files come from keep the plain letters in the order of their codes,
// from the space as glyph 3 on: best that can be done for numbers of glyphs in a font that is not at hand.
char16_t LetterOfGlyph(std::uint16_t glyph) {
    constexpr std::uint16_t kFirst = 3;
    constexpr std::uint16_t kLast = 97;
    return glyph >= kFirst && glyph <= kLast ? static_cast<char16_t>(glyph - kFirst + u' ') : u' ';
}

// Fonts of symbols have their letters in a private part of the code.
char16_t WithoutPrivatePart(char16_t letter) {
    return (letter & 0xFF00) == 0xF000 ? static_cast<char16_t>(letter & 0xFF) : letter;
}

QString TextAt(const DeviceContext& dc, const Fields& f, std::size_t at, std::uint32_t claimed,
               Letters letters, std::uint32_t options) {
    const std::uint32_t wanted = std::min<std::uint32_t>(claimed, kLongestText);
    if (letters == Letters::Narrow) {
        return Decoded(f.Part(at, wanted), dc.State().font->charset);
    }
    QString text;
    for (std::size_t i = 0; i < f.CountOf(wanted, at, 2); ++i) {
        const std::uint16_t letter = f.Word(at + 2 * i);
        text +=
            QChar((options & TextLine::kGlyphs) != 0 ? LetterOfGlyph(letter) : WithoutPrivatePart(letter));
    }
    return text;
}

// The description of a line of text, which stands at `at`.
void DrawDescribed(DeviceContext& dc, const Fields& f, std::size_t at, Letters letters) {
    TextLine line{f.Point32(at), {}};
    line.options = f.UInt(at + 16);
    line.rectangle = f.Rect32(at + 20);
    line.text = TextAt(dc, f, f.UInt(at + 12), f.UInt(at + 8), letters, line.options);
    const std::uint32_t distances = f.UInt(at + 36);
    const auto steps =
        static_cast<std::uint32_t>(line.text.size()) * ((line.options & TextLine::kPairs) != 0 ? 2 : 1);
    for (std::size_t i = 0; distances != 0 && i < f.CountOf(steps, distances, 4); ++i) {
        line.distances.push_back(f.Int(distances + 4 * i));
    }
    DrawText(dc, line);
}

template <Letters letters>
void ExtTextOut(DeviceContext& dc, const Fields& f) {
    DrawDescribed(dc, f, 36, letters);
}

template <Letters letters>
void PolyTextOut(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kLines = 40;
    constexpr std::size_t kLineBytes = 40;
    const std::size_t count = f.CountOf(f.UInt(36), kLines, kLineBytes);
    for (std::size_t i = 0; i < count && !dc.Canvas().IsExhausted(); ++i) {
        DrawDescribed(dc, f, kLines + i * kLineBytes, letters);
    }
}

void SmallTextOut(DeviceContext& dc, const Fields& f) {
    constexpr std::uint32_t kNoRectangle = 0x100;
    constexpr std::uint32_t kSmallLetters = 0x200;
    constexpr std::size_t kRectangle = 36;
    TextLine line{f.Point32(8), {}};
    line.options = f.UInt(20);
    const bool hasRectangle = (line.options & kNoRectangle) == 0;
    if (hasRectangle) {
        line.rectangle = f.Rect32(kRectangle);
    }
    const Letters letters = (line.options & kSmallLetters) != 0 ? Letters::Narrow : Letters::Wide;
    line.text = TextAt(dc, f, kRectangle + (hasRectangle ? 16 : 0), f.UInt(16), letters, line.options);
    DrawText(dc, line);
}

constexpr std::array kRows{
    EmfRow{EmfType::ExtTextOutA, 76, RecordKind::Drawing, ExtTextOut<Letters::Narrow>},
    EmfRow{EmfType::ExtTextOutW, 76, RecordKind::Drawing, ExtTextOut<Letters::Wide>},
    EmfRow{EmfType::PolyTextOutA, 40, RecordKind::Drawing, PolyTextOut<Letters::Narrow>},
    EmfRow{EmfType::PolyTextOutW, 40, RecordKind::Drawing, PolyTextOut<Letters::Wide>},
    EmfRow{EmfType::SmallTextOut, 36, RecordKind::Drawing, SmallTextOut},
};

} // namespace

std::span<const EmfRow> EmfTextRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
