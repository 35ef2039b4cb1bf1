// The random numbers of a row of pixels, see NoiseKernels.h.
#include "picture/engine/kernels/base/PositionRandom.h"
#include "picture/engine/kernels/stylize/NoiseKernels.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

constexpr std::uint32_t kStepMask = kNoiseSteps - 1;

void AddNoise(const NoiseRow& row) {
    const std::uint32_t randomRow = RandomRow(row.y);
    for (int x = 0; x < row.width; ++x) {
        const std::uint8_t* const in = row.in + static_cast<std::ptrdiff_t>(x) * 4;
        std::uint8_t* const out = row.out + static_cast<std::ptrdiff_t>(x) * 4;
        std::uint32_t random = RandomAt(randomRow, row.x + x);
        for (int k = 0; k < 3; ++k, random >>= kNoiseStepBits) {
            const auto step = static_cast<int>(random & kStepMask);
            const int noise =
                ((2 * step - (kNoiseSteps - 1)) * row.amplitude + kNoiseSteps / 2) >> kNoiseStepBits;
            const int sum = in[k] * kNoiseUnit + noise + kNoiseUnit / 2;
            out[k] = static_cast<std::uint8_t>(std::clamp(sum >> 6, 0, 255));
        }
        out[3] = in[3];
    }
}

void SumNoise(int firstRow, int endRow, int firstColumn, int width, std::int32_t* sums) {
    std::fill_n(sums, width * kNoiseSumNumbers, 0);
    for (int y = firstRow; y < endRow; ++y) {
        const std::uint32_t randomRow = RandomRow(y);
        for (int x = 0; x < width; ++x) {
            std::uint32_t random = RandomAt(randomRow, firstColumn + x);
            for (int k = 0; k < 3; ++k, random >>= kNoiseStepBits) {
                sums[x * kNoiseSumNumbers + k] += static_cast<std::int32_t>(random & kStepMask);
            }
        }
    }
}

constexpr NoiseKernels kPlain{
    .AddNoise = AddNoise,
    .SumNoise = SumNoise,
};

} // namespace

const NoiseKernels& NoiseKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
