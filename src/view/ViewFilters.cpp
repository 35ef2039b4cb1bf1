// Weights of the view's filters, see ViewFilters.h.
#include "view/ViewFilters.h"

#include <algorithm>
#include <cmath>

namespace pictorel {
namespace {

// Rounds weights whose sum is 1 to whole numbers whose sum is kWholeWeight; the largest takes what rounding
// left.
std::array<std::int16_t, 4> WholeWeights(const std::array<double, 4>& weights) {
    std::array<std::int16_t, 4> whole{};
    int rest = kWholeWeight;
    for (std::size_t t = 0; t < weights.size(); ++t) {
        whole[t] = static_cast<std::int16_t>(std::lround(weights[t] * kWholeWeight));
        rest -= whole[t];
    }
    auto& largest = *std::max_element(whole.begin(), whole.end());
    largest = static_cast<std::int16_t>(largest + rest);
    return whole;
}

// R. Keys, "Cubic convolution interpolation for digital image processing" (1981), a = -1/2.
std::array<double, 4> CubicWeights(double t) {
    return {((-0.5 * t + 1.0) * t - 0.5) * t, (1.5 * t - 2.5) * t * t + 1.0, ((-1.5 * t + 2.0) * t + 0.5) * t,
            (0.5 * t - 0.5) * t * t};
}

} // namespace

std::vector<Taps> AreaTaps(const SourceScale& scale, Span drawn) {
    constexpr double kLeast = 1e-6; // source pixels; what a last device pixel covers at least
    const int last = static_cast<int>(std::ceil(scale.extent)) - 1;
    std::vector<Taps> taps(static_cast<std::size_t>(drawn.Length()));
    for (int i = drawn.begin; i < drawn.end; ++i) {
        const double edge = static_cast<double>(i - scale.origin) / scale.zoom;
        const double low = std::clamp(edge, 0.0, std::max(0.0, scale.extent - kLeast));
        const double high =
            std::clamp(edge + 1.0 / scale.zoom, low + kLeast, std::max(low + kLeast, scale.extent));
        Taps& own = taps[static_cast<std::size_t>(i - drawn.begin)];
        own.first = std::min(static_cast<int>(low), last);
        std::array<double, 4> weights{};
        for (int t = 0; t < kAreaTaps; ++t) {
            const double covered = std::min(high, own.first + t + 1.0) - std::max(low, own.first + t + 0.0);
            weights[static_cast<std::size_t>(t)] = std::max(0.0, covered) / (high - low);
        }
        own.weights = WholeWeights(weights);
    }
    return taps;
}

std::vector<Taps> CubicTaps(const SourceScale& scale, Span drawn) {
    std::vector<Taps> taps(static_cast<std::size_t>(drawn.Length()));
    for (int i = drawn.begin; i < drawn.end; ++i) {
        const double place = (static_cast<double>(i - scale.origin) + 0.5) / scale.zoom - 0.5;
        const double before = std::floor(place);
        taps[static_cast<std::size_t>(i - drawn.begin)] = {static_cast<int>(before) - 1,
                                                           WholeWeights(CubicWeights(place - before))};
    }
    return taps;
}

std::vector<int> NearestPixels(const SourceScale& scale, Span drawn) {
    const int last = static_cast<int>(scale.extent) - 1;
    std::vector<int> pixels(static_cast<std::size_t>(drawn.Length()));
    for (int i = drawn.begin; i < drawn.end; ++i) {
        const double place = (static_cast<double>(i - scale.origin) + 0.5) / scale.zoom;
        pixels[static_cast<std::size_t>(i - drawn.begin)] =
            static_cast<int>(std::clamp<double>(place, 0, last));
    }
    return pixels;
}

} // namespace pictorel
