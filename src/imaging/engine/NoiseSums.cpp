// The random numbers of many pixels added up, see NoiseSums.h.
#include "imaging/engine/NoiseSums.h"

#include "imaging/engine/StylizeRandom.h"

#include <algorithm>

namespace pictorel::engine::scalar {

void SumNoise(int firstRow, int endRow, int width, const NoiseSums& sums) {
    std::fill_n(sums.blue, width, 0);
    std::fill_n(sums.green, width, 0);
    std::fill_n(sums.red, width, 0);
    constexpr std::uint32_t kMask = kNoiseSteps - 1;
    for (int y = firstRow; y < endRow; ++y) {
        const std::uint32_t randomRow = RandomRow(y);
        for (int x = 0; x < width; ++x) {
            const std::uint32_t random = RandomAt(randomRow, x);
            sums.blue[x] += static_cast<std::int32_t>(random & kMask);
            sums.green[x] += static_cast<std::int32_t>(random >> 10 & kMask);
            sums.red[x] += static_cast<std::int32_t>(random >> 20 & kMask);
        }
    }
}

} // namespace pictorel::engine::scalar
