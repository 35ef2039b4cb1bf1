// Loops over the points of a run as they are, see RunKernels.h.
#include "picture/engine/kernels/warp/RunKernels.h"
#include "picture/engine/kernels/warp/RunLoops-inl.h"

namespace pictorel::engine {
namespace {

constexpr RunKernels kPlain{
    .BoundsOf = HWY_NAMESPACE::BoundsOf,
    .LocateEvenly = HWY_NAMESPACE::LocateEvenly,
    .AddSamples = HWY_NAMESPACE::AddSamples,
    .MeanOfSamples = HWY_NAMESPACE::MeanOfSamples,
};

} // namespace

const RunKernels& RunKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
