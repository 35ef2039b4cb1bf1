// The line that a motion blur averages along, see MotionLine.h.
#include "picture/engine/kernels/blur/MotionLine.h"

#include "picture/engine/kernels/base/FixedPoint.h"

#include <cmath>

namespace pictorel::engine {

std::optional<FixedLine> FixedLine::Of(const Line& line) {
    const int sumOfWhites = (2 * line.whole + 2) * 255; // while one row enters before another leaves
    if (sumOfWhites >= kFixedUnit) {
        return std::nullopt;
    }
    int shift = 0;
    while ((sumOfWhites << (shift + 1)) < kFixedUnit) {
        ++shift;
    }
    const double perLength = kMeanUnit / line.length * kFixedUnit / (1 << shift);
    if (perLength >= kFixedUnit - 1) {
        return std::nullopt;
    }
    const double tipShare = kMeanUnit / line.length * line.tip * kFixedUnit / kMotionUnit;
    return FixedLine{line.whole, shift, static_cast<std::int16_t>(std::lround(perLength)),
                     static_cast<std::int16_t>(std::lround(tipShare))};
}

} // namespace pictorel::engine
