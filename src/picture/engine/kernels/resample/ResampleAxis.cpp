// Weights along one axis, see ResampleAxis.h.
#include "picture/engine/kernels/resample/ResampleAxis.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace pictorel::engine {

double Lanczos(double x) {
    if (x == 0) {
        return 1;
    }
    if (std::abs(x) >= kLanczosLobes) {
        return 0;
    }
    const double angle = std::numbers::pi * x;
    return kLanczosLobes * std::sin(angle) * std::sin(angle / kLanczosLobes) / (angle * angle);
}

namespace {

struct LanczosRun {
    int first;
    std::vector<double> weights;
};

LanczosRun LanczosAround(double centre, double width, int sourceLength) {
    const double scale = std::max(width, 1.0);
    const int first = std::max(static_cast<int>(std::ceil(centre - 0.5 - kLanczosLobes * scale)), 0);
    const int last =
        std::min(static_cast<int>(std::floor(centre - 0.5 + kLanczosLobes * scale)), sourceLength - 1);
    LanczosRun run{first, {}};
    run.weights.reserve(static_cast<std::size_t>(last) - static_cast<std::size_t>(first) + 1);
    for (int i = first; i <= last; ++i) {
        run.weights.push_back(Lanczos((i + 0.5 - centre) / scale));
    }
    return run;
}

double Sum(std::span<const double> weights) {
    double sum = 0;
    for (const double weight : weights) {
        sum += weight;
    }
    return sum;
}

} // namespace

void AxisWeights::Append(int first, std::span<const double> weights) {
    // The sine of a multiple of pi is not quite 0: without this the same size would read six times as much.
    constexpr double kNoteworthy = 1e-9;
    const double sum = Sum(weights);
    while (weights.size() > 1 && std::abs(weights.front() / sum) < kNoteworthy) {
        weights = weights.subspan(1);
        ++first;
    }
    while (weights.size() > 1 && std::abs(weights.back() / sum) < kNoteworthy) {
        weights = weights.first(weights.size() - 1);
    }
    samples_.push_back({first, weights_.size(), weights.size()});
    for (const double weight : weights) {
        weights_.push_back(static_cast<float>(weight / sum));
    }
}

AxisWeights LanczosWeights(int sourceLength, int resultLength) {
    return LanczosWeights(0, sourceLength, sourceLength, resultLength);
}

AxisWeights LanczosWeights(double begin, double length, int sourceLength, int resultLength) {
    AxisWeights axis;
    const double width = length / resultLength;
    for (int i = 0; i < resultLength; ++i) {
        const LanczosRun run = LanczosAround(begin + (i + 0.5) * width, width, sourceLength);
        axis.Append(run.first, run.weights);
    }
    return axis;
}

void AppendMean(AxisWeights& axis, double begin, double end, int sourceLength) {
    const int first = std::clamp(static_cast<int>(std::floor(begin)), 0, sourceLength - 1);
    const int last = std::clamp(static_cast<int>(std::ceil(end)) - 1, first, sourceLength - 1);
    std::vector<double> overlaps;
    for (int i = first; i <= last; ++i) {
        overlaps.push_back(std::min(end, i + 1.0) - std::max(begin, static_cast<double>(i)));
    }
    axis.Append(first, overlaps);
}

} // namespace pictorel::engine
