// Drawing objects from the fields that records of both kinds of metafiles describe them with.
#pragma once

#include "picture/metafile/Fields.h"
#include "picture/metafile/canvas/Bitmap.h"
#include "picture/metafile/canvas/Objects.h"

namespace pictorel::metafile {

struct PenFields {
    std::uint32_t style; // dashes in the lowest 4 bits, then caps and joins
    double width;
    QRgb colour;
};
Pen MakePen(const PenFields& fields);

// By the number of its style; one with a bitmap is made by MakePatternBrush.
Brush MakeBrush(std::uint32_t style, QRgb colour, int hatch);

// No brush where the bitmap cannot be decoded or is too large to be a pattern.
Brush MakePatternBrush(const Bitmap& bitmap);

// From its version and count of colours on.
Palette MakePalette(const Fields& fields, std::size_t at);

} // namespace pictorel::metafile
