// A metafile of either kind ready to be played, and the picture that playing it gives.
#pragma once

#include "picture/PixelArray.h"
#include "picture/metafile/canvas/DeviceContext.h"

#include <QSizeF>

#include <functional>

namespace pictorel::metafile {

struct Drawing {
    explicit Drawing(QPointF dots) : dotsPerMillimetre(dots), mapping(dots) {}

    std::function<void(DeviceContext&)> play;
    QPointF dotsPerMillimetre; // of the file's device
    Mapping mapping;           // before the first record
    QRectF sheet;              // device units that the picture shows; empty where the file does not tell
    QSizeF inches;             // of the sheet; empty where the file does not tell
    bool hasBitmaps = false;
    bool isOnlyBitmaps = false; // whose pixels need no smooth edges
    std::size_t fileBytes = 0;
};

// Throws ImagingError(UnsupportedFormat) where nothing is drawn, (TooLarge, OutOfMemory).
PixelArray Played(const Drawing& drawing);

} // namespace pictorel::metafile
