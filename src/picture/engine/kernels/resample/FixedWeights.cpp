// Weights in fixed point, see FixedWeights.h.
#include "picture/engine/kernels/resample/FixedWeights.h"

#include <algorithm>
#include <cmath>

namespace pictorel::engine {
namespace {

constexpr int kFewestBits = 14; // for weights up to 2

float LargestWeight(const AxisWeights& axis) {
    float largest = 0;
    for (int i = 0; i < axis.Length(); ++i) {
        for (const float weight : axis[i].weights) {
            largest = std::max(largest, std::abs(weight));
        }
    }
    return largest;
}

} // namespace

FixedWeights::FixedWeights(const AxisWeights& axis, Use use, int mostBits) : bits_(kFewestBits) {
    const float largest = LargestWeight(axis);
    while (bits_ < mostBits && std::ldexp(largest, bits_ + 1) <= INT16_MAX) {
        ++bits_;
    }
    const std::size_t group = use == Use::Columns ? 4 : 2;
    for (int i = 0; i < axis.Length(); ++i) {
        const AxisWeights::Taps taps = axis[i];
        const int before = use == Use::Columns ? taps.first % 2 : 0;
        const std::size_t count =
            (static_cast<std::size_t>(before) + taps.weights.size() + group - 1) / group * group;
        samples_.push_back({taps.first - before, weights_.size(), count});
        weights_.resize(weights_.size() + count);
        std::int16_t* const weights = weights_.data() + weights_.size() - count + before;
        int rest = 1 << bits_;
        std::size_t heaviest = 0;
        for (std::size_t k = 0; k < taps.weights.size(); ++k) {
            weights[k] = static_cast<std::int16_t>(std::lround(std::ldexp(taps.weights[k], bits_)));
            rest -= weights[k];
            heaviest = weights[k] > weights[heaviest] ? k : heaviest;
        }
        weights[heaviest] = static_cast<std::int16_t>(weights[heaviest] + rest);
    }
}

} // namespace pictorel::engine
