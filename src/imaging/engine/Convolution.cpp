// Convolution with a symmetric kernel, see Convolution.h.
#include "imaging/engine/Convolution.h"

#include <cmath>
#include <numeric>

namespace pictorel::engine {
namespace {

// A Gaussian sampled at whole pixels falls short of its own variance below this width (at 0.2 px it would do
// nothing at all); three weights of the right variance take its place. At this width the two agree.
constexpr double kNarrow = 0.6;

// Beyond this many standard deviations a bell holds 0.05 %: a tenth of a level, twice for the two directions.
constexpr double kCut = 3.5;

// Weights of the neighbours at distance 1, 2, ...; the centre has the rest.
std::vector<double> Neighbours(double sigma) {
    if (sigma <= kNarrow) {
        return {sigma * sigma / 2};
    }
    std::vector<double> bell(static_cast<std::size_t>(std::ceil(kCut * sigma)));
    for (std::size_t k = 0; k < bell.size(); ++k) {
        const double distance = static_cast<double>(k + 1) / sigma;
        bell[k] = std::exp(-distance * distance / 2);
    }
    const double total = 1 + 2 * std::accumulate(bell.begin(), bell.end(), 0.0);
    for (double& weight : bell) {
        weight /= total;
    }
    return bell;
}

} // namespace

HalfKernel GaussianKernel(double sigma) {
    const std::vector<double> neighbours = Neighbours(sigma);
    HalfKernel kernel(neighbours.size() + 1);
    // From the outside in, each rounding makes up for the ones before it.
    double exact = 0;
    int placed = 0;
    for (std::size_t k = neighbours.size(); k > 0; --k) {
        exact += neighbours[k - 1] * kKernelUnit;
        const int weight = static_cast<int>(std::lround(exact)) - placed;
        kernel[k] = static_cast<std::int16_t>(weight);
        placed += weight;
    }
    if (placed == 0) {
        return {};
    }
    kernel[0] = static_cast<std::int16_t>(kKernelUnit - 2 * placed);
    while (kernel.back() == 0) {
        kernel.pop_back();
    }
    return kernel;
}

namespace scalar {

void Convolve(const WideComponent* const* taps, const HalfKernel& kernel, WideComponent* out,
              std::size_t count) {
    const auto weighted = [&](int value, std::size_t k) {
        return (value * kernel[k] + kKernelUnit / 2) / kKernelUnit;
    };
    const std::size_t centre = kernel.size() - 1;
    for (std::size_t i = 0; i < count; ++i) {
        int sum = weighted(taps[centre][i], 0);
        for (std::size_t k = 1; k < kernel.size(); ++k) {
            sum += weighted(taps[centre - k][i] + taps[centre + k][i], k);
        }
        out[i] = static_cast<WideComponent>(sum);
    }
}

} // namespace scalar

} // namespace pictorel::engine
