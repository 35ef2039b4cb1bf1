// Scaling a picture to another size, see Resample.h.
#include "imaging/engine/Resample.h"

#include "imaging/engine/ResampleOpaque.h"
#include "imaging/engine/ResampleSeparable.h"

namespace pictorel::engine {

PixelArray Resize(const PixelArray& source, int width, int height) {
    CheckPictureSize(source.Width(), source.Height());
    CheckPictureSize(width, height);
    if (width == source.Width() && height == source.Height()) {
        return source;
    }
    const auto resample = source.HasAlpha() ? ResampleSeparable : ResampleOpaque;
    return resample(source, LanczosWeights(source.Width(), width), LanczosWeights(source.Height(), height));
}

} // namespace pictorel::engine
