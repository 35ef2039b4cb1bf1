// Counts at both ends of the range, plainly, see EndKernels.h.
#include "picture/PixelArray.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/point/EndKernels.h"

namespace pictorel::engine {
namespace {

void CountEnds(const std::uint8_t* row, int width, const EndLimits& limits, EndCounts& counts) {
    for (const std::uint8_t* pixel = row; pixel != row + std::ptrdiff_t{kComponents} * width;
         pixel += kComponents) {
        for (std::size_t k = 0; k < limits.size(); ++k) {
            for (std::size_t c = 0; c < 3; ++c) {
                const int value = k < kLimitsPerEnd ? pixel[c] : 255 - pixel[c];
                counts[k][c] += value < limits[k][c] ? 1 : 0;
            }
        }
    }
}

constexpr EndKernels kPlain{
    .CountEnds = CountEnds,
};

} // namespace

const EndKernels& EndKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
