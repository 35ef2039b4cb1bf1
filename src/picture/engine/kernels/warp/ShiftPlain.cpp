// Rows moved sideways as plain loops, see ShiftKernels.h.
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/warp/BicubicKernels.h"
#include "picture/engine/kernels/warp/ShiftKernels.h"

namespace pictorel::engine {
namespace {

void ShiftRow(const ShiftedRow& row) {
    for (int i = 0; i < row.width * kComponents; ++i) {
        std::int32_t sum = 1 << (kProductBits - 1);
        for (int k = 0; k < kCubicTaps; ++k) {
            sum += HalvedWeight(row.weights[k]) * row.in[i + k * kComponents];
        }
        row.out[i] = ClampToByte(sum >> kProductBits);
    }
}

constexpr ShiftKernels kPlain{
    .ShiftRow = ShiftRow,
};

} // namespace

const ShiftKernels& ShiftKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
