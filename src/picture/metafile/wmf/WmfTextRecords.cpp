// Records of Windows metafiles that draw text.
#include "picture/metafile/canvas/Text.h"
#include "picture/metafile/wmf/WmfRecords.h"

#include <array>

namespace pictorel::metafile {
namespace {

constexpr std::size_t Even(std::size_t bytes) {
    return (bytes + 1) / 2 * 2;
}

void TextOut(DeviceContext& dc, const Fields& f) {
    const std::size_t count = f.Word(0);
    const std::size_t shown = std::min(count, kLongestText);
    DrawText(dc, {ReversedPoint(f, 2 + Even(count)), Decoded(f.Part(2, shown), dc.State().font->charset)});
}

// A rectangle stands before the letters where one is used, and distances may follow them.
void ExtTextOut(DeviceContext& dc, const Fields& f) {
    constexpr std::size_t kFixedBytes = 8;
    TextLine line{ReversedPoint(f, 0), {}};
    line.options = f.Word(6);
    std::size_t at = kFixedBytes;
    if ((line.options & (TextLine::kOpaque | TextLine::kClipped)) != 0) {
        line.rectangle = QRectF(f.Point16(at), f.Point16(at + 4));
        at += 8;
    }
    const std::size_t count = f.Word(4);
    const std::size_t shown = std::min(count, kLongestText);
    line.text = Decoded(f.Part(at, shown), dc.State().font->charset);
    at += Even(count);
    if (line.text.size() == static_cast<qsizetype>(shown)) { // a distance for each byte, not for each letter
        for (std::size_t i = 0; i < f.CountOf(static_cast<std::uint32_t>(shown), at, 2); ++i) {
            line.distances.push_back(f.Short(at + 2 * i));
        }
    }
    DrawText(dc, line);
}

constexpr std::array kRows{
    WmfRow{WmfType::TextOut, 6, RecordKind::Drawing, TextOut},
    WmfRow{WmfType::ExtTextOut, 8, RecordKind::Drawing, ExtTextOut},
};

} // namespace

std::span<const WmfRow> WmfTextRows() noexcept {
    return kRows;
}

} // namespace pictorel::metafile
