// The background of a warp's canvas, see WarpCanvas.h.
#include "picture/engine/kernels/warp/WarpCanvas.h"

#include "picture/engine/Geometry.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/WholePixel.h"

namespace pictorel::engine {

PixelArray WindowOf(const PixelArray& source, const OptionalWindow& window) {
    return window ? Crop(source, *window) : source;
}

void FillPixels(std::uint8_t* to, int count, std::uint32_t background) {
    const std::uint32_t pixel = OpaquePixel(background);
    for (int i = 0; i < count; ++i) {
        StorePixel(to + i * kComponents, pixel);
    }
}

PixelArray BackgroundOnly(const PixelArray& source, std::uint32_t background, const OptionalWindow& window) {
    PixelArray result =
        window ? PixelArray::Like(source, window->width, window->height) : PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    ForEachBand(result.Height(), result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            FillPixels(rows + y * result.Stride(), result.Width(), background);
        }
    });
    return result;
}

} // namespace pictorel::engine
