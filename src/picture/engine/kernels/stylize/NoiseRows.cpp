// The random numbers of a row of pixels, see NoiseRows.h.
#include "picture/engine/kernels/stylize/NoiseRows.h"

#include "picture/engine/kernels/base/StylizeRandom.h"

#include <algorithm>

namespace pictorel::engine::scalar {
namespace {

constexpr std::uint32_t kStepMask = kNoiseSteps - 1;
constexpr int kStepBits = 10;
static_assert(kNoiseSteps == 1 << kStepBits && kNoiseUnit == 1 << 6);

} // namespace

void AddNoise(const NoiseRow& row) {
    const std::uint32_t randomRow = RandomRow(row.y);
    for (int x = 0; x < row.width; ++x) {
        const std::uint8_t* const in = row.in + static_cast<std::ptrdiff_t>(x) * 4;
        std::uint8_t* const out = row.out + static_cast<std::ptrdiff_t>(x) * 4;
        std::uint32_t random = RandomAt(randomRow, x);
        for (int k = 0; k < 3; ++k, random >>= kStepBits) {
            const auto step = static_cast<int>(random & kStepMask);
            const int noise = ((2 * step - (kNoiseSteps - 1)) * row.amplitude + kNoiseSteps / 2) >> kStepBits;
            const int sum = in[k] * kNoiseUnit + noise + kNoiseUnit / 2;
            out[k] = static_cast<std::uint8_t>(std::clamp(sum >> 6, 0, 255));
        }
        out[3] = in[3];
    }
}

void SumNoise(int firstRow, int endRow, int width, std::int32_t* sums) {
    std::fill_n(sums, width * kNoiseSumNumbers, 0);
    for (int y = firstRow; y < endRow; ++y) {
        const std::uint32_t randomRow = RandomRow(y);
        for (int x = 0; x < width; ++x) {
            std::uint32_t random = RandomAt(randomRow, x);
            for (int k = 0; k < 3; ++k, random >>= kStepBits) {
                sums[x * kNoiseSumNumbers + k] += static_cast<std::int32_t>(random & kStepMask);
            }
        }
    }
}

} // namespace pictorel::engine::scalar
