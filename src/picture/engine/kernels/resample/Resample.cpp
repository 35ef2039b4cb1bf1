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

} // namespace pictorel::engine
