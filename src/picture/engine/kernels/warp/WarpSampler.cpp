// Bicubic sampling with an antialiased border, see WarpSampler.h.
#include "picture/engine/kernels/warp/WarpSampler.h"

#include "picture/engine/kernels/base/CubicWeights.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/warp/HorizontalKernels.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace pictorel::engine {
namespace {

bool Contains(const SampleBounds& outer, const SampleBounds& inner) {
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

// Fetches the pixels so far across and down from those points into the cache: runs cross the source's rows,
// which no prefetcher of a processor foresees.
void FetchRun(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::int32_t across,
              std::int32_t down) {
    constexpr int kStep = 4; // what lies between is fetched for the next rows of the result
    for (int i = 0; i < run.count; i += kStep) {
        const std::ptrdiff_t x = (run.x[i] + across) >> kPhaseBits;
        const std::ptrdiff_t y = (run.y[i] + down) >> kPhaseBits;
        __builtin_prefetch(pixels + y * stride + x * kPixelBytes);
    }
}

} // namespace

WarpSampler::WarpSampler(const PixelArray& source, Outside outside, std::uint32_t background)
    : source_(source),
      outside_(outside),
      backgroundPixel_(ExposedPixel(background, source.HasAlpha())),
      deepInside_(InsideOf({6, 6})) {}

SampleBounds WarpSampler::InsideOf(BorderWidth border) const {
    const auto margin = [](double width) {
        return static_cast<std::int32_t>(std::max(1.0, std::ceil(width / 2)) * kPhases);
    };
    return {margin(border.x), (source_.Width() - 1) * kPhases - margin(border.x) - 1, margin(border.y),
            (source_.Height() - 1) * kPhases - margin(border.y) - 1};
}

bool WarpSampler::IsDeepInside(const SampleRun& run) const {
    return Contains(deepInside_, run.bounds);
}

bool WarpSampler::IsBackground(const SampleRun& run, BorderWidth border) const {
    if (outside_ == Outside::EdgePixels) {
        return false;
    }
    const auto reach = [](double width) { return static_cast<std::int32_t>((0.5 + width) * kPhases); };
    const SampleBounds& bounds = run.bounds;
    const std::int32_t reachX = reach(border.x);
    const std::int32_t reachY = reach(border.y);
    return bounds.right < -reachX || bounds.left > (source_.Width() - 1) * kPhases + reachX ||
           bounds.bottom < -reachY || bounds.top > (source_.Height() - 1) * kPhases + reachY;
}

ColumnSpan WarpSampler::NearestToPicture(const SampleRun& run) const {
    const std::int32_t right = (source_.Width() - 1) * kPhases;
    const std::int32_t bottom = (source_.Height() - 1) * kPhases;
    const SampleBounds& bounds = run.bounds;
    if (bounds.left >= 0 && bounds.right <= right && bounds.top >= 0 && bounds.bottom <= bottom) {
        return {0, run.count};
    }
    ColumnSpan nearest{0, 0};
    std::int32_t nearestDistance = INT32_MAX;
    for (int i = 0; i < run.count; ++i) {
        const std::int32_t distance =
            std::max({0, -run.x[i], run.x[i] - right, -run.y[i], run.y[i] - bottom});
        if (distance < nearestDistance) {
            nearestDistance = distance;
            nearest.first = i;
        }
        if (distance == nearestDistance) {
            nearest.end = i + 1;
        }
    }
    return nearest;
}

void WarpSampler::FillBackground(int count, std::uint8_t* to) const {
    for (int i = 0; i < count; ++i) {
        StorePixel(to + i * kComponents, backgroundPixel_);
    }
}

void WarpSampler::Sample(const SampleRun& run, BorderWidth border, std::uint8_t* to) const {
    const SampleBounds safe = InsideOf(border);
    const SampleBounds& all = run.bounds;
    if (Contains(safe, all)) {
        // The next run of the row, as far from this as this is long.
        const std::int32_t across = run.x[run.count - 1] - run.x[0];
        const std::int32_t down = run.y[run.count - 1] - run.y[0];
        if (Contains(safe, {all.left + across, all.right + across, all.top + down, all.bottom + down})) {
            FetchRun(source_.Row(0), source_.Stride(), run, across, down);
        }
        SampleInside(source_.Row(0), source_.Stride(), run, to);
        return;
    }
    const auto isInside = [&](int i) {
        return run.x[i] >= safe.left && run.x[i] <= safe.right && run.y[i] >= safe.top &&
               run.y[i] <= safe.bottom;
    };
    SampleRun inside; // consecutive points
    for (int i = 0; i < run.count; i += std::max(inside.count, 1)) {
        for (inside.count = 0; i + inside.count < run.count && isInside(i + inside.count); ++inside.count) {
            inside.x[inside.count] = run.x[i + inside.count];
            inside.y[inside.count] = run.y[i + inside.count];
        }
        if (inside.count > 0) {
            SampleInside(source_.Row(0), source_.Stride(), inside, to + i * kComponents);
        } else {
            SampleNearBorder(run.x[i], run.y[i], border, to + i * kComponents);
        }
    }
}

void WarpSampler::SampleInside(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                               std::uint8_t* to) const {
    if (source_.HasAlpha()) {
        bicubic_.SampleWithAlpha(pixels, stride, run, to);
    } else if (run.isHorizontal && IsNarrow(run.bounds)) {
        horizontal_.SampleHorizontal(pixels, stride, run, to);
    } else {
        bicubic_.SampleOpaque(pixels, stride, run, to);
    }
}

void WarpSampler::SampleNearBorder(std::int32_t x, std::int32_t y, BorderWidth border,
                                   std::uint8_t* to) const {
    const double coverage = outside_ == Outside::EdgePixels ? 1 : Coverage(x, y, border);
    if (coverage <= 0) {
        StorePixel(to, backgroundPixel_);
        return;
    }
    constexpr int kTaps = kCubicTaps;
    std::array<std::uint8_t, static_cast<std::size_t>(kTaps * kTaps * kComponents)> neighbours;
    const int left = (x >> kPhaseBits) - 1;
    const int top = (y >> kPhaseBits) - 1;
    for (int row = 0; row < kTaps; ++row) {
        const std::uint8_t* const from = source_.Row(std::clamp(top + row, 0, source_.Height() - 1));
        for (int column = 0; column < kTaps; ++column) {
            std::memcpy(neighbours.data() + (row * kTaps + column) * kComponents,
                        from + std::clamp(left + column, 0, source_.Width() - 1) * kComponents, kComponents);
        }
    }
    SampleRun one;
    one.count = 1;
    one.x[0] = kPhases + (x & (kPhases - 1));
    one.y[0] = kPhases + (y & (kPhases - 1));
    const std::ptrdiff_t stride = kTaps * kComponents;
    if (source_.HasAlpha()) {
        BicubicKernels::Plain().SampleWithAlpha(neighbours.data(), stride, one, to);
    } else {
        BicubicKernels::Plain().SampleOpaque(neighbours.data(), stride, one, to);
    }
    if (coverage < 1) {
        MixBackground(coverage, to);
    }
}

// How much of the result pixel the picture covers: along each axis the distance to the picture's outline, in
// result pixels, plus one half.
double WarpSampler::Coverage(std::int32_t x, std::int32_t y, BorderWidth border) const {
    const auto along = [](std::int32_t position, int size, double width) {
        const double fromEdge = static_cast<double>(position) / kPhases + 0.5;
        const double distance = std::min(fromEdge, size - fromEdge);
        return std::clamp(distance / width + 0.5, 0.0, 1.0);
    };
    return along(x, source_.Width(), border.x) * along(y, source_.Height(), border.y);
}

void WarpSampler::MixBackground(double coverage, std::uint8_t* pixel) const {
    std::array<std::uint8_t, kComponents> background;
    StorePixel(background.data(), backgroundPixel_);
    const double pictureShare = coverage * pixel[3];
    const double backgroundShare = (1 - coverage) * background[3];
    const double alpha = pictureShare + backgroundShare;
    for (int c = 0; c < 3; ++c) {
        const double sum = pictureShare * pixel[c] + backgroundShare * background[c];
        pixel[c] = RoundToByte(alpha == 0 ? 0 : sum / alpha);
    }
    pixel[3] = RoundToByte(alpha);
}

} // namespace pictorel::engine
