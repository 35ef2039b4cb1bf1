// How computed values become 8-bit components: clamped to 0..255 and rounded to nearest, halves up.
#pragma once

#include <algorithm>
#include <cstdint>

namespace pictorel::engine {

inline std::uint8_t ClampToByte(int value) {
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

// Not for NaN. Minimum and maximum, unlike std::clamp, become one instruction each, without a branch.
template <class Real>
std::uint8_t RoundToByte(Real value) {
    return static_cast<std::uint8_t>(
        static_cast<int>(std::min(std::max(value, Real{0}), Real{255}) + static_cast<Real>(0.5)));
}

} // namespace pictorel::engine
