// Weights along one axis in 16-bit fixed point.
#pragma once

#include "picture/engine/kernels/resample/ResampleAxis.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace pictorel::engine {

// The weights of one axis as multiples of 2^-Bits(); those of each result sample add up to 2^Bits() exactly,
// so that an even surface keeps its colour.
class FixedWeights {
  public:
    // There is a multiple of weights as the use asks for, and columns begin at an even one: where the axis
    // does not, zeros stand before and after. They may reach up to four samples beyond the source.
    struct Taps {
        int first;
        std::span<const std::int16_t> weights;
    };

    enum class Use { Rows, Columns }; // taken in pairs, and in fours

    // As many bits as the largest weight leaves, 14 to `mostBits`.
    FixedWeights(const AxisWeights& axis, Use use, int mostBits);

    int Bits() const noexcept { return bits_; }
    int Length() const noexcept { return static_cast<int>(samples_.size()); }
    Taps operator[](int i) const noexcept {
        const Sample& sample = samples_[static_cast<std::size_t>(i)];
        return {sample.first, {weights_.data() + sample.offset, sample.count}};
    }

  private:
    struct Sample {
        int first;
        std::size_t offset;
        std::size_t count;
    };
    int bits_;
    std::vector<Sample> samples_;
    std::vector<std::int16_t> weights_;
};

} // namespace pictorel::engine
