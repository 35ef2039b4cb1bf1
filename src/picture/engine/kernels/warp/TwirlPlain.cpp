// Where the points of a twirled row come from, as a plain loop, see TwirlKernels.h.
#include "picture/engine/kernels/warp/TwirlKernels.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

void LocateTwirl(const TwirlRow& row, int count, std::int32_t* across, std::int32_t* down) {
    for (int i = 0; i < count; ++i) {
        const float x = row.x + static_cast<float>(i);
        const float t = std::min(std::sqrt(x * x + row.y * row.y) * row.perRadius, 1.0F);
        const float turns = row.turns * (1.0F - t * t * (3.0F - 2.0F * t));
        // Sine and cosine of half the angle, then of the angle.
        const float half = (turns - std::nearbyint(turns)) * kHalfTurn;
        const float square = half * half;
        float sine = kSineFirst;
        for (const float term : kSineTerms) {
            sine = sine * square + term;
        }
        sine = half * (sine * square + 1.0F);
        float cosine = kCosineFirst;
        for (const float term : kCosineTerms) {
            cosine = cosine * square + term;
        }
        cosine = cosine * square + 1.0F;
        const float fullSine = 2.0F * sine * cosine;
        const float fullCosine = 1.0F - 2.0F * sine * sine;
        across[i] = row.centreX +
                    static_cast<std::int32_t>(std::nearbyint((x * fullCosine - row.y * fullSine) * row.unit));
        down[i] = row.centreY +
                  static_cast<std::int32_t>(std::nearbyint((x * fullSine + row.y * fullCosine) * row.unit));
    }
}

constexpr TwirlKernels kPlain{
    .LocateTwirl = LocateTwirl,
};

} // namespace

const TwirlKernels& TwirlKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
