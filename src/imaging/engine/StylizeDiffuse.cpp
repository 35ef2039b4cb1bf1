// Diffuse: pixels change places with random neighbours, see Stylize.h.
#include "imaging/ForEachBand.h"
#include "imaging/engine/Parameters.h"
#include "imaging/engine/ResampleSeparable.h"
#include "imaging/engine/Rounding.h"
#include "imaging/engine/Stylize.h"
#include "imaging/engine/StylizeRandom.h"
#include "imaging/engine/WholePixel.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace pictorel::engine {
namespace {

// Evenly one of -radius..radius, from 16 random bits.
int Displacement(std::uint32_t random, int radius) {
    return static_cast<int>((random * (2 * static_cast<std::uint32_t>(radius) + 1)) >> 16) - radius;
}

PixelArray Scattered(const PixelArray& source, int radius, double percent) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const auto limit = static_cast<std::uint64_t>(percent / 100 * 0x1p32);
    const int lastColumn = source.Width() - 1;
    const int lastRow = source.Height() - 1;
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            const std::uint32_t randomRow = RandomRow(y);
            std::uint8_t* const to = rows + y * result.Stride();
            for (int x = 0; x < result.Width(); ++x) {
                const std::uint32_t choice = RandomAt(randomRow, x);
                int fromX = x;
                int fromY = y;
                if (choice < limit) {
                    const std::uint32_t place = MixBits(choice);
                    fromX = std::clamp(x + Displacement(place & 0xFFFF, radius), 0, lastColumn);
                    fromY = std::clamp(y + Displacement(place >> 16, radius), 0, lastRow);
                }
                StorePixel(to + 4 * x, LoadPixel(source.Row(fromY) + 4 * fromX));
            }
        }
    });
    return result;
}

// Of every result sample: with the probability `share` the mean of its neighbourhood, of the given variance.
// The neighbourhood is the smallest box of odd length whose variance is no less, its two ends weighted so
// that the variance is met. Beyond the border the samples repeat.
AxisWeights BoxOfVariance(int length, double variance) {
    int half = 0;
    while (half * (half + 1) / 3.0 < variance) {
        ++half;
    }
    // With weight 1 for the inner 2 half - 1 samples and e for the ends, the variance is
    // (inner + 2 half^2 e) / (2 half - 1 + 2 e), `inner` the sum of squares of the inner distances.
    const double inner = (half - 1) * half * (2.0 * half - 1) / 3;
    const double endWeight =
        half == 0 ? 1 : (variance * (2 * half - 1) - inner) / (2.0 * half * half - 2 * variance);
    AxisWeights axis;
    std::vector<double> weights;
    for (int i = 0; i < length; ++i) {
        const int first = std::max(i - half, 0);
        const int last = std::min(i + half, length - 1);
        weights.assign(static_cast<std::size_t>(last) - static_cast<std::size_t>(first) + 1, 0.0);
        for (int d = -half; d <= half; ++d) {
            const int sample = std::clamp(i + d, 0, length - 1);
            weights[static_cast<std::size_t>(sample - first)] += std::abs(d) == half ? endWeight : 1.0;
        }
        axis.Append(first, weights);
    }
    return axis;
}

// What a copy so much reduced shows of a scattered picture: each of its pixels is the mean of many, so it is
// the expected value, a blend with the mean over the neighbourhood. That one is a fraction of a pixel of the
// copy wide, so what is matched is its variance: R (R + 1) / 3 along each axis, in pixels of the picture.
PixelArray ExpectedScatter(const PixelArray& source, int radius, double percent) {
    const double variance =
        source.Reduction() * source.Reduction() * radius * (static_cast<double>(radius) + 1) / 3;
    PixelArray result = ResampleSeparable(source, BoxOfVariance(source.Width(), variance),
                                          BoxOfVariance(source.Height(), variance));
    std::uint8_t* const rows = result.WritableRows();
    const double share = percent / 100;
    for (int y = 0; y < result.Height(); ++y) {
        std::uint8_t* const to = rows + y * result.Stride();
        const std::uint8_t* const kept = source.Row(y);
        for (int x = 0; x < result.Width(); ++x) {
            const double keptAlpha = (1 - share) * kept[4 * x + 3];
            const double movedAlpha = share * to[4 * x + 3];
            const double alpha = keptAlpha + movedAlpha;
            for (int c = 4 * x; c < 4 * x + 3; ++c) {
                const double colour = alpha == 0 ? 0 : (keptAlpha * kept[c] + movedAlpha * to[c]) / alpha;
                to[c] = RoundToByte(colour);
            }
            to[4 * x + 3] = RoundToByte(alpha);
        }
    }
    return result;
}

} // namespace

PixelArray Diffuse(const PixelArray& source, int radius, double percent) {
    RequireRange("the radius of diffusion", radius, 0, kMaximumSide);
    RequireRange("diffusion", percent, 0, 100);
    if (radius == 0 || percent == 0) {
        return source;
    }
    // Below half size a pixel of the copy stands for more than four of the picture; above, chance still
    // shows.
    constexpr double kChanceShows = 0.5;
    if (source.Reduction() < kChanceShows) {
        return ExpectedScatter(source, radius, percent);
    }
    const auto scaledRadius = static_cast<int>(std::lround(radius * source.Reduction()));
    return Scattered(source, std::max(scaledRadius, 1), percent);
}

} // namespace pictorel::engine
