// Counts at both ends of the range, plainly, see EndCounts.h.
#include "picture/engine/kernels/point/EndCounts.h"

#include "picture/PixelArray.h"

namespace pictorel::engine::scalar {

void CountEnds(const std::uint8_t* row, int width, const EndLimits& limits, EndCounts& counts) {
    for (const std::uint8_t* pixel = row; pixel != row + std::ptrdiff_t{PixelArray::kComponents} * width;
         pixel += PixelArray::kComponents) {
        for (std::size_t k = 0; k < limits.size(); ++k) {
            for (std::size_t c = 0; c < 3; ++c) {
                const int value = k < kLimitsPerEnd ? pixel[c] : 255 - pixel[c];
                counts[k][c] += value < limits[k][c] ? 1 : 0;
            }
        }
    }
}

} // namespace pictorel::engine::scalar
