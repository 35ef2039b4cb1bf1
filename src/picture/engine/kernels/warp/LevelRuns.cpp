// Runs along a line as plain loops, see LevelRuns.h.
#include "picture/engine/kernels/warp/LevelRuns.h"

#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/warp/WarpKernel.h"

#include <array>

namespace pictorel::engine::scalar {
namespace {

constexpr int kComponents = PixelArray::kComponents;

int Product(int value, int weight) {
    return (value * weight + (1 << 14)) >> 15;
}

} // namespace

void SampleLevel(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to) {
    const std::ptrdiff_t left = (run.bounds.left >> kPhaseBits) - 1;
    const std::ptrdiff_t right = (run.bounds.right >> kPhaseBits) + kCubicTaps - 2;
    const std::uint8_t* const first = pixels + ((run.y[0] >> kPhaseBits) - 1) * stride + left * kComponents;
    const CubicWeights& down = WeightsAt(run.y[0]);
    std::array<int, std::size_t{kLevelWidth} * kComponents> mixed;
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

} // namespace pictorel::engine::scalar
