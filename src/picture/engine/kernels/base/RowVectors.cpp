// Whole rows of bytes in vectors, see RowKernels.h.
#include "picture/engine/kernels/base/RowKernels.h"
#include "picture/engine/kernels/base/Streaming.h"

#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/base/RowVectors.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>
// After foreach_target.h, which includes this file once for each kind of vectors.
#include "picture/engine/kernels/base/RowLoops-inl.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {

void CopyRow(const std::uint8_t* HWY_RESTRICT in, std::size_t size, bool streams,
             std::uint8_t* HWY_RESTRICT out, const std::uint8_t* ahead) {
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::ScalableTag<std::uint8_t> bytes;
    const std::size_t lanes = hn::Lanes(bytes);
    std::size_t i = 0;
    if (streams && reinterpret_cast<std::uintptr_t>(out) % lanes == 0) {
        for (; i + lanes <= size; i += lanes) {
            if (ahead != nullptr) {
                FetchAhead(ahead + i);
            }
            hn::Stream(hn::LoadU(bytes, in + i), bytes, out + i);
        }
        hwy::FlushStream();
    }
    std::memcpy(out + i, in + i, size - i);
}

const RowKernels& VectorKernels() {
    static constexpr RowKernels kKernels{
        .CopyRow = CopyRow,
        .AddBytes = AddBytes,
    };
    return kKernels;
}

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(VectorKernels);

const RowKernels& RowKernels::Best() {
    return HWY_DYNAMIC_DISPATCH(VectorKernels)();
}

} // namespace pictorel::engine
#endif
