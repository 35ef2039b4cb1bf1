// Scaling a picture to another size, see Resample.h.
#include "imaging/engine/Resample.h"

#include "imaging/engine/ResampleFixed.h"

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
