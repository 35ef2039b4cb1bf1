// Scaling a picture to another size, see Resample.h.
#include "picture/engine/Resample.h"

#include "picture/engine/kernels/resample/ResampleFixed.h"

namespace pictorel::engine {

PixelArray Resize(const PixelArray& source, int width, int height) {
    CheckPictureSize(source.Width(), source.Height());
    CheckPictureSize(width, height);
    if (width == source.Width() && height == source.Height()) {
        return source;
    }
    return ResampleFixed(source, LanczosWeights(source.Width(), width),
                         LanczosWeights(source.Height(), height));
}

PixelArray ResizeArea(const PixelArray& source, const Area& area, int width, int height) {
    CheckPictureSize(source.Width(), source.Height());
    CheckPictureSize(width, height);
    return ResampleFixed(source, LanczosWeights(area.left, area.width, source.Width(), width),
                         LanczosWeights(area.top, area.height, source.Height(), height));
}

} // namespace pictorel::engine
