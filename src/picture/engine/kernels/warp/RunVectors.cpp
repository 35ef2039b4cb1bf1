// Loops over the points of a run in the best vectors, see RunKernels.h.
#include "picture/engine/kernels/warp/RunKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/warp/RunVectors.cpp"
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/warp/RunLoops-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {

const RunKernels& VectorKernels() {
    static constexpr RunKernels kKernels{
        .BoundsOf = BoundsOf,
        .LocateEvenly = LocateEvenly,
        .AddSamples = AddSamples,
        .MeanOfSamples = MeanOfSamples,
    };
    return kKernels;
}

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(VectorKernels);

const RunKernels& RunKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
