// Lines of text, drawn as the outlines of their letters in the nearest font that there is.
#pragma once

#include "picture/metafile/canvas/DeviceContext.h"

#include <QString>

#include <vector>

namespace pictorel::metafile {

struct TextLine {
    // What `options` says, as records number it.
    static constexpr std::uint32_t kOpaque = 0x0002;  // the rectangle is filled with the background colour
    static constexpr std::uint32_t kClipped = 0x0004; // nothing is drawn outside the rectangle
    static constexpr std::uint32_t kGlyphs = 0x0010;  // numbers of glyphs, not letters
    static constexpr std::uint32_t kPairs = 0x2000;   // distances across and down alternate

    QPointF reference; // logical units, like the others
    QString text;
    std::vector<double> distances{}; // from letter to letter; the font's own where there are none
    std::uint32_t options = 0;
    QRectF rectangle{};
};

// Records may be long, but no line of text is.
inline constexpr std::size_t kLongestText = 4096;

// Without a QGuiApplication there are no fonts: only backgrounds are drawn.
void DrawText(DeviceContext& context, const TextLine& line);

// Letters of 8 bits in the code page of the font's character set.
QString Decoded(codecs::ByteView letters, std::uint8_t charset);

} // namespace pictorel::metafile
