// Rows moved sideways as plain loops, see ShiftRows.h.
#include "picture/engine/kernels/warp/ShiftRows.h"

#include "picture/engine/kernels/base/Rounding.h"

namespace pictorel::engine::scalar {

void ShiftRow(const ShiftedRow& row) {
    for (int i = 0; i < row.width * PixelArray::kComponents; ++i) {
        std::int32_t sum = 1 << (kProductBits - 1);
        for (int k = 0; k < kCubicTaps; ++k) {
            sum += HalvedWeight(row.weights[k]) * row.in[i + k * PixelArray::kComponents];
        }
        row.out[i] = ClampToByte(sum >> kProductBits);
    }
}

} // namespace pictorel::engine::scalar
