// Makes a picture whose pixels are weighted sums of a source's rows and columns.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/kernels/resample/ResampleAxis.h"

namespace pictorel::engine {

// The result is columns.Length() x rows.Length() pixels, computed in single precision on premultiplied colour
// where the source has alpha, and rounded once.
PixelArray ResampleSeparable(const PixelArray& source, const AxisWeights& columns, const AxisWeights& rows);

} // namespace pictorel::engine
