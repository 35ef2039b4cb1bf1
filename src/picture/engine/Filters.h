// Operations that look at a pixel's neighbourhood: blurs, sharpening, minimum and maximum.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/Window.h"

// Lengths and radii are pixels of the picture and are multiplied by the source's Reduction(). Blurs work on
// premultiplied colour where the source has alpha. Beyond its border the picture is continued by its edge
// pixels. Parameters that the formulas cannot take throw ImagingError(InvalidValue).
namespace pictorel::engine {

// Standard deviation in pixels; 0 is neutral.
PixelArray GaussianBlur(const PixelArray& source, double sigma);

// c + amount (c - blurred), sigma 1 px; 0 is neutral. Alpha is left alone.
PixelArray UnsharpMask(const PixelArray& source, double amount);

// Mean along a line of `length` pixels centred on the pixel at `degrees`, counter-clockwise from the
// horizontal (90 is vertical); lengths of 1 and less are neutral.
PixelArray MotionBlur(const PixelArray& source, double degrees, double length);

// Mean along the ray to the centre, from scale 1 - percent/100 to 1; 0 is neutral. The ray is followed from
// whole pixel to whole pixel of the axis that it is closer to.
PixelArray ZoomBlur(const PixelArray& source, double percent, const OptionalWindow& wanted = {});

// Brightest / darkest value of the square of `radius` around the pixel, per channel; a negative radius is the
// other filter of that size, 0 is neutral. Alpha is left alone, and pixels that cannot be seen (alpha 0) do
// not take part. On a reduced copy a radius between two whole ones mixes their results.
PixelArray MaximumFilter(const PixelArray& source, int radius);
PixelArray MinimumFilter(const PixelArray& source, int radius);

} // namespace pictorel::engine
