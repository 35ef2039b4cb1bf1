// Cutting a part out of a picture, see Geometry.h.
#include "picture/ImagingError.h"
#include "picture/engine/Geometry.h"

#include <algorithm>
#include <cstring>

namespace pictorel::engine {

PixelArray Crop(const PixelArray& source, const Window& window) {
    const int left = std::max(window.left, 0);
    const int top = std::max(window.top, 0);
    const int right = std::min(window.Right(), source.Width());
    const int bottom = std::min(window.Bottom(), source.Height());
    if (left >= right || top >= bottom) {
        throw ImagingError(ImagingFailure::InvalidValue, "The part lies outside the picture.");
    }
    PixelArray part = PixelArray::Like(source, right - left, bottom - top);
    std::uint8_t* const rows = part.WritableRows();
    for (int y = top; y < bottom; ++y) {
        std::memcpy(rows + (y - top) * part.Stride(), source.Row(y) + PixelArray::kComponents * left,
                    part.RowBytes());
    }
    return part;
}

} // namespace pictorel::engine
