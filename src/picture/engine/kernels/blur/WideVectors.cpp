// Pixels to wide rows and back in the best vectors, see WideKernels.h.
#include "picture/engine/kernels/blur/WideKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/blur/WideVectors.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/blur/WideLoops-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {

const WideKernels& VectorKernels() {
    static constexpr WideKernels kKernels{
        .WideFromPixels = WideFromPixels,
        .PixelsFromWide = PixelsFromWide,
        .SharpenPixels = SharpenPixels,
    };
    return kKernels;
}

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(VectorKernels);

const WideKernels& WideKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
