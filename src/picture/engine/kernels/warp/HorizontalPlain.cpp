// Runs along a line as plain loops, see HorizontalKernels.h.
#include "picture/engine/kernels/base/CubicWeights.h"
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/warp/HorizontalKernels.h"

#include <array>

namespace pictorel::engine {
namespace {

int Product(int value, int weight) {
    return FixedProduct(value, weight);
}

void SampleHorizontal(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                      std::uint8_t* to) {
    const std::ptrdiff_t left = (run.bounds.left >> kPhaseBits) - 1;
    const std::ptrdiff_t right = (run.bounds.right >> kPhaseBits) + kCubicTaps - 2;
    const std::uint8_t* const first = pixels + ((run.y[0] >> kPhaseBits) - 1) * stride + left * kComponents;
    const CubicWeights& down = WeightsAt(run.y[0]);
    std::array<int, std::size_t{kHorizontalWidth} * kComponents> mixed;
    for (std::ptrdiff_t i = 0; i < (right - left + 1) * kComponents; ++i) {
        int sum = 0;
        for (int k = 0; k < kCubicTaps; ++k) {
            // Twice as fine, since the weight of one whole halves it.
            sum += Product(first[k * stride + i] << (kMixedBits + 1), down[k]);
        }
        mixed[i] = sum;
    }
    for (int i = 0; i < run.count; ++i) {
        const CubicWeights& across = WeightsAt(run.x[i]);
        const std::ptrdiff_t at = ((run.x[i] >> kPhaseBits) - 1 - left) * kComponents;
        for (int c = 0; c < kComponents; ++c) {
            int sum = 1 << (kMixedBits - 2);
            for (int k = 0; k < kCubicTaps; ++k) {
                sum += Product(mixed[at + k * kComponents + c], across[k]);
            }
            to[i * kComponents + c] = ClampToByte(sum >> (kMixedBits - 1));
        }
    }
}

constexpr HorizontalKernels kPlain{
    .SampleHorizontal = SampleHorizontal,
};

} // namespace

const HorizontalKernels& HorizontalKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
