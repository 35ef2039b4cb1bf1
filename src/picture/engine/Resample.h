// Scaling a picture to another size.
#pragma once

#include "picture/PixelArray.h"

namespace pictorel::engine {

// Antialiased Lanczos-3 both ways, separable, on premultiplied colour where the source has alpha (method:
// Duchon 1979, "Lanczos filtering in one and two dimensions"; the kernel is widened by the scale when
// reducing). The same size is neutral. Sizes are checked against the limits before memory is taken; throws
// ImagingError (TooLarge, UnsupportedFormat below 1, OutOfMemory).
PixelArray Resize(const PixelArray& source, int width, int height);

// A part of a picture, in its pixels and fractions of them.
struct Area {
    double left;
    double top;
    double width;
    double height;
};

// Just that part of the source in that size: what lies beside it is seen by the kernel, as in a resized
// whole.
PixelArray ResizeArea(const PixelArray& source, const Area& area, int width, int height);

} // namespace pictorel::engine
