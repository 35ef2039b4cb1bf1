// Whole rows of bytes as plain loops, see RowKernels.h.
#include "picture/engine/kernels/base/RowKernels.h"
#include "picture/engine/kernels/base/RowLoops-inl.h"

#include <cstring>

namespace pictorel::engine {
namespace {

void CopyRow(const std::uint8_t* in, std::size_t size, bool /*streams*/, std::uint8_t* out,
             const std::uint8_t* /*ahead*/) {
    std::memcpy(out, in, size);
}

constexpr RowKernels kPlain{
    .CopyRow = CopyRow,
    .AddBytes = HWY_NAMESPACE::AddBytes,
};

} // namespace

const RowKernels& RowKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
