// The fixed point that most weights have: what a vector's product of 16-bit numbers rounds to.
#pragma once

namespace pictorel::engine {

// Weights in 1/32768.
inline constexpr int kFixedBits = 15;
inline constexpr int kFixedUnit = 1 << kFixedBits;

// A value times such a weight, rounded to nearest, halves up.
constexpr int FixedProduct(int value, int weight) {
    return (value * weight + kFixedUnit / 2) >> kFixedBits;
}

} // namespace pictorel::engine
