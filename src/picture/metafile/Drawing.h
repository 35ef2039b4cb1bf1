// A metafile of either kind ready to be played, and the picture that playing it gives.
#pragma once

#include "picture/PixelArray.h"
#include "picture/metafile/canvas/DeviceContext.h"

#include <QSizeF>

#include <functional>

namespace pictorel::metafile {

struct Drawing {
    explicit Drawing(QPointF dots) : dotsPerMillimetre(dots), mapping(dots) {}

    // Plays the records until the surface is exhausted. How much of the file was played: 1 for all of it.
    std::function<double(DeviceContext&)> play;
    QPointF dotsPerMillimetre; // of the file's device
    Mapping mapping;           // before the first record
    QRectF sheet;              // device units that the picture shows; empty where the file does not tell
    QSizeF inches;             // of the sheet; empty where the file does not tell
    bool hasBitmaps = false;
    bool isOnlyBitmaps = false; // whose pixels need no smooth edges
    std::size_t fileBytes = 0;
};

// What is drawn before the file has asked for too much work is kept, and PartShown() tells. Throws
// ImagingError(UnsupportedFormat) where nothing is drawn, (TooLarge, OutOfMemory).
PixelArray Played(const Drawing& drawing);

} // namespace pictorel::metafile
