// Operations that first measure the whole picture: automatic contrast and levels, equalisation.
#pragma once

#include "picture/PixelArray.h"

// Pixels that cannot be seen (alpha 0) are not counted, and alpha is left alone. A picture or channel of a
// single value has nothing to stretch and stays as it is; where nothing changes, the source itself comes
// back.
namespace pictorel::engine {

// Stretches so that 0.5 % of the pixels clip at each end: one map from luma, used for all channels.
PixelArray AutoContrast(const PixelArray& source);

// The same, one map per channel.
PixelArray AutoLevels(const PixelArray& source);

// Histogram equalisation of luma, mixed in with `weight` (1 is full equalisation, 0 leaves the picture as it
// is): each pixel's three channels move by weight (equalised luma - luma), so its colour differences stay.
PixelArray Equalize(const PixelArray& source, double weight);

} // namespace pictorel::engine
