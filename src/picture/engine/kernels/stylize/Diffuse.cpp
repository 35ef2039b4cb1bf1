// Diffuse: pixels change places with random neighbours, see Stylize.h.
#include "picture/ForEachBand.h"
#include "picture/engine/Stylize.h"
#include "picture/engine/kernels/base/FixedPoint.h"
#include "picture/engine/kernels/base/Parameters.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/RowKernels.h"
#include "picture/engine/kernels/base/Streaming.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/rank/RankKernels.h"
#include "picture/engine/kernels/resample/ResampleSeparable.h"
#include "picture/engine/kernels/stylize/DiffuseKernels.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace pictorel::engine {
namespace {

// A function of its own, with copies of what it needs: bytes that are written could be anything.
void TakePixels(const std::uint8_t* pixels, const std::int32_t* sources, std::ptrdiff_t count,
                std::uint8_t* to) {
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        StorePixel(to + 4 * i, LoadPixel(pixels + std::ptrdiff_t{4} * sources[i]));
    }
}

PixelArray Scattered(const PixelArray& source, int radius, double percent) {
    const auto moved = static_cast<std::uint64_t>(percent / 100 * 0x1p32); // of 2^32 random numbers
    if (moved == 0) {
        return source;
    }
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const std::uint8_t* const pixels = source.Row(0);
    const Scatter scatter{source.Width() - 1,
                          source.Height() - 1,
                          static_cast<int>(source.Stride() / 4),
                          radius,
                          static_cast<std::uint32_t>(moved - 1),
                          source.LeftInPicture(),
                          source.TopInPicture()};
    const bool streams = IsStreamed(result);
    ForEachBand(result.Height(), 2 * result.RowBytes(), [&](int first, int end) {
        std::vector<std::int32_t> sources(static_cast<std::size_t>(result.Width()) + kVectorPixels);
        std::vector<std::uint8_t> row(result.RowBytes());
        for (int y = first; y < end; ++y) {
            DiffuseKernels::Best().ChooseSources(scatter, y, sources.data());
            TakePixels(pixels, sources.data(), result.Width(), row.data());
            const int ahead = std::min(y + scatter.radius + kRowsAhead, scatter.lastRow);
            RowKernels::Best().CopyRow(row.data(), row.size(), streams, rows + y * result.Stride(),
                                       source.Row(ahead));
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

// `moved` becomes the mean of itself, of weight `share`, and `kept`, for pixels with alpha.
void MixPremultiplied(const std::uint8_t* kept, int width, float share, std::uint8_t* moved) {
    for (int i = 0; i < 4 * width; i += 4) {
        const float keptAlpha = (1 - share) * static_cast<float>(kept[i + 3]);
        const float movedAlpha = share * static_cast<float>(moved[i + 3]);
        const float alpha = keptAlpha + movedAlpha;
        for (int c = i; c < i + 3; ++c) {
            const float sum =
                keptAlpha * static_cast<float>(kept[c]) + movedAlpha * static_cast<float>(moved[c]);
            moved[c] = RoundToByte(alpha == 0 ? 0.0F : sum / alpha);
        }
        moved[i + 3] = RoundToByte(alpha);
    }
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
    if (share == 1) {
        return result;
    }
    ForEachBand(result.Height(), 3 * result.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            std::uint8_t* const to = rows + y * result.Stride();
            if (source.HasAlpha()) {
                MixPremultiplied(source.Row(y), result.Width(), static_cast<float>(share), to);
            } else {
                RankKernels::Best().MixRow(source.Row(y), to, static_cast<int>(share * kFixedUnit),
                                           {source.Row(y), to, result.Width(), false});
            }
        }
    });
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
