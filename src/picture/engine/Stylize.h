// Operations that redraw the picture in another manner: noise, diffuse, mosaic, emboss, halftone.
#pragma once

#include "picture/PixelArray.h"

// Lengths are pixels of the picture and are multiplied by the source's Reduction(). Alpha is left alone by
// noise, emboss and halftone, moved along by diffuse, averaged (on premultiplied colour) by mosaic.
namespace pictorel::engine {

// Adds evenly spread noise of amplitude 255 percent/100, per channel: a pure function of the position. A
// reduced copy gets what averaging leaves of it. 0 is neutral.
PixelArray Noise(const PixelArray& source, int percent);

// With the probability `percent` %, a random pixel of the square of `radius` around it: a pure function of
// the position. Below half size a reduced copy gets the expected value, a slight blur. 0 is neutral.
PixelArray Diffuse(const PixelArray& source, int radius, double percent);

// The mean of size x size blocks from the top left corner; 0 and 1 are neutral.
PixelArray Mosaic(const PixelArray& source, int size);

// Grey relief: 128 + amount (luma height/2 px towards `degrees` minus luma height/2 px away), light direction
// counter-clockwise from the horizontal.
PixelArray Emboss(const PixelArray& source, double degrees, double height, double amount);

// Black dots on white on a 45 degree screen of cells `cell` px wide, at least 1, dot area by luma with gain.
PixelArray Halftone(const PixelArray& source, double cell, double gain);

} // namespace pictorel::engine
