// Weights and row loops of the view's filters, see ViewFilters.h.
#include "imaging/desktop/ViewFilters.h"

#include <algorithm>
#include <cmath>

namespace pictorel {
namespace {

constexpr int kMixedBits = 6; // a byte times 64 leaves 16 bits room for overshoot
constexpr int kRowShift = kWeightBits - kMixedBits;
constexpr int kColumnShift = kWeightBits + kMixedBits;

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

template <int kTaps>
void MixRowsOf(const std::array<const std::uint8_t*, 4>& rows, const std::array<std::int16_t, 4>& weights,
               int count, std::int16_t* mixed) {
    const std::uint8_t* const row0 = rows[0];
    const std::uint8_t* const row1 = rows[1];
    const std::uint8_t* const row2 = rows[2];
    const std::uint8_t* const row3 = rows[kTaps - 1];
    const std::int16_t weight0 = weights[0];
    const std::int16_t weight1 = weights[1];
    const std::int16_t weight2 = weights[2];
    const std::int16_t weight3 = kTaps == 4 ? weights[3] : std::int16_t{0};
    for (int i = 0; i < count; ++i) {
        int sum = row0[i] * weight0 + row1[i] * weight1 + row2[i] * weight2 + (1 << (kRowShift - 1));
        if constexpr (kTaps == 4) {
            sum += row3[i] * weight3;
        }
        mixed[i] = static_cast<std::int16_t>(sum >> kRowShift);
    }
}

template <int kTaps>
void MixColumnsOf(const std::int16_t* mixed, int firstColumn, const std::vector<Taps>& columns,
                  std::uint8_t* pixels) {
    for (const Taps& taps : columns) {
        const std::int16_t* const source = mixed + 4 * (taps.first - firstColumn);
        std::array<int, 4> sums;
        sums.fill(1 << (kColumnShift - 1));
        for (int t = 0; t < kTaps; ++t) {
            for (int c = 0; c < 4; ++c)
                sums[static_cast<std::size_t>(c)] +=
                    source[4 * t + c] * taps.weights[static_cast<std::size_t>(t)];
        }
        if constexpr (kTaps == kCubicTaps) {
            sums[3] = std::clamp(sums[3], 0, 255 << kColumnShift);
            for (std::size_t c = 0; c < 3; ++c)
                sums[c] = std::clamp(sums[c], 0, sums[3]);
        }
        for (std::size_t c = 0; c < 4; ++c)
            pixels[c] = static_cast<std::uint8_t>(sums[c] >> kColumnShift);
        pixels += 4;
    }
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

void MixRows(int taps, const std::array<const std::uint8_t*, 4>& rows,
             const std::array<std::int16_t, 4>& weights, int count, std::int16_t* mixed) {
    (taps == kAreaTaps ? MixRowsOf<kAreaTaps> : MixRowsOf<kCubicTaps>)(rows, weights, count, mixed);
}

void MixColumns(int taps, const std::int16_t* mixed, int firstColumn, const std::vector<Taps>& columns,
                std::uint8_t* pixels) {
    (taps == kAreaTaps ? MixColumnsOf<kAreaTaps> : MixColumnsOf<kCubicTaps>)(mixed, firstColumn, columns,
                                                                             pixels);
}

} // namespace pictorel
