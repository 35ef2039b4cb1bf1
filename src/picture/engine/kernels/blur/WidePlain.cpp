// Pixels to wide rows and back as plain loops, see WideKernels.h.
#include "picture/engine/kernels/blur/WideKernels.h"
#include "picture/engine/kernels/blur/WideLoops-inl.h"

namespace pictorel::engine {
namespace {

constexpr WideKernels kPlain{
    .WideFromPixels = HWY_NAMESPACE::WideFromPixels,
    .PixelsFromWide = HWY_NAMESPACE::PixelsFromWide,
    .SharpenPixels = HWY_NAMESPACE::SharpenPixels,
};

} // namespace

const WideKernels& WideKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
