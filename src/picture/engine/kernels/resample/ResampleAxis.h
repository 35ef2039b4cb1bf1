// Of which source samples every result sample along one axis is made, and with what weights.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace pictorel::engine {

// One weighted run of neighbouring source samples per result sample; the weights of each add up to 1.
class AxisWeights {
  public:
    struct Taps {
        int first; // source sample of the first weight
        std::span<const float> weights;
    };

    // Appends the next result sample. Weights need not be normalised, but their sum must not be 0; those
    // before the first and after the last noteworthy one are left out.
    void Append(int first, std::span<const double> weights);

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
    std::vector<Sample> samples_;
    std::vector<float> weights_;
};

// Result rows that are made together, while the source rows of the first are in the cache.
inline constexpr int kRowsTogether = 8;

// The Lanczos-3 kernel sinc(x) sinc(x / 3) (Duchon 1979).
inline constexpr double kLanczosLobes = 3;
double Lanczos(double x);

// That kernel for `resultLength` samples evenly spread over `sourceLength`,
// widened by the scale when reducing. The picture ends at its border: weights beyond it are
// left out.
AxisWeights LanczosWeights(int sourceLength, int resultLength);

// The same for the part of the source from `begin` on, `length` of its samples long.
AxisWeights LanczosWeights(double begin, double length, int sourceLength, int resultLength);

// The mean of the source from `begin` to `end`, where sample i covers i to i + 1; weights in parts of a
// sample. The interval must overlap the source.
void AppendMean(AxisWeights& axis, double begin, double end, int sourceLength);

} // namespace pictorel::engine
