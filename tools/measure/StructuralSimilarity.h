// How alike two pictures look.
#pragma once

#include "picture/PixelArray.h"

namespace pictorel::measure {

// The mean structural similarity index of the blue, green and red components: 1 for the same picture, about 0
// for unrelated ones. Both pictures are of one size; alpha is not looked at. Gaussian window of 11 x 11
// pixels, sigma 1.5, K1 = 0.01, K2 = 0.03, windows that reach over the edge weighted by what lies inside.
// Source: Wang, Bovik, Sheikh and Simoncelli, "Image quality assessment: from error visibility to structural
// similarity", IEEE Transactions on Image Processing 13 (2004). Throws std::invalid_argument for two sizes.
double StructuralSimilarity(const PixelArray& a, const PixelArray& b);

} // namespace pictorel::measure
