// The scenes that the sample maker knows.
#pragma once

#include "Picture.h"

namespace pictorel::sample {

// Each paints a picture of the given size, the same on every machine with the same arithmetic.
Picture PaintLandscape(int width, int height);
Picture PaintStillLife(int width, int height);
Picture PaintPoster(int width, int height);

} // namespace pictorel::sample
