// Everything that records set for the records after them, and that can be saved and restored.
#pragma once

#include "picture/metafile/canvas/Mapping.h"
#include "picture/metafile/canvas/Objects.h"
#include "picture/metafile/canvas/RasterOperations.h"

#include <QPainterPath>
#include <QRegion>

#include <optional>

namespace pictorel::metafile {

enum class ArcDirection { CounterClockwise = 1, Clockwise = 2 };

struct DrawingState {
    explicit DrawingState(const Mapping& initial) : mapping(initial) {}

    Mapping mapping;
    std::shared_ptr<const Pen> pen = std::make_shared<const Pen>();
    std::shared_ptr<const Brush> brush = std::make_shared<const Brush>();
    std::shared_ptr<const Font> font = std::make_shared<const Font>();
    std::shared_ptr<const Palette> palette = std::make_shared<const Palette>();

    int operation = kCopyPen;
    Qt::FillRule fillRule = Qt::OddEvenFill;
    bool opaqueBackground = true;
    QRgb backgroundColour = 0xFFFFFFFF;
    QRgb textColour = 0xFF000000;
    unsigned textAlignment = 0;
    double textExtra = 0; // logical units between letters
    bool smoothBitmaps = false;
    ArcDirection arcDirection = ArcDirection::CounterClockwise;
    double miterLimit = 10;
    QPointF brushOrigin; // device units
    QPointF position;    // logical units

    std::optional<QRegion> clip{};     // canvas pixels; none where nothing is clipped
    std::optional<QRegion> metaClip{}; // clips too
};

} // namespace pictorel::metafile
