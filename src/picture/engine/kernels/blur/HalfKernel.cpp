// The Gaussian as a symmetric kernel, see HalfKernel.h.
#include "picture/engine/kernels/blur/HalfKernel.h"

#include "picture/engine/kernels/base/FixedPoint.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace pictorel::engine {
namespace {

// A Gaussian sampled at whole pixels falls short of its own variance below this width (at 0.2 px it would do
// nothing at all); three weights of the right variance take its place. At this width the two agree.
constexpr double kNarrow = 0.6;

// What is cut off a bell on both sides together, for each of the two directions: an eighth of a level.
constexpr double kCut = 0.0005;

// Weights of both neighbours at distance 1, 2, ... together; the centre has the rest.
std::vector<double> Neighbours(double sigma) {
    if (sigma <= kNarrow) {
        return {sigma * sigma};
    }
    constexpr double kFarthest = 6; // standard deviations
    std::vector<double> bell(static_cast<std::size_t>(std::ceil(kFarthest * sigma)));
    for (std::size_t k = 0; k < bell.size(); ++k) {
        const double distance = static_cast<double>(k + 1) / sigma;
        bell[k] = 2 * std::exp(-distance * distance / 2);
    }
    const double whole = 1 + std::accumulate(bell.begin(), bell.end(), 0.0);
    double total = whole;
    while (whole - total + bell.back() < kCut * whole) {
        total -= bell.back();
        bell.pop_back();
    }
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
        exact += neighbours[k - 1] * kFixedUnit;
        const int weight = static_cast<int>(std::lround(exact)) - placed;
        kernel[k] = static_cast<std::int16_t>(weight);
        placed += weight;
    }
    if (placed == 0) {
        return {};
    }
    kernel[0] = static_cast<std::int16_t>(kFixedUnit - placed);
    while (kernel.back() == 0) {
        kernel.pop_back();
    }
    return kernel;
}

} // namespace pictorel::engine
