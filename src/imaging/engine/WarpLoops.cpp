// Loops over the points of a run, see WarpLoops.h.
#include "imaging/engine/WarpLoops.h"

#include "imaging/engine/Rounding.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "imaging/engine/WarpLoops.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {

constexpr int kComponents = PixelArray::kComponents;

SampleBounds BoundsOf(const SampleRun& run) {
    SampleBounds bounds{run.x[0], run.x[0], run.y[0], run.y[0]};
    for (int i = 1; i < run.count; ++i) {
        bounds.left = std::min(bounds.left, run.x[i]);
        bounds.right = std::max(bounds.right, run.x[i]);
        bounds.top = std::min(bounds.top, run.y[i]);
        bounds.bottom = std::max(bounds.bottom, run.y[i]);
    }
    return bounds;
}

void LocateEvenly(EvenSpacing spacing, std::int32_t* HWY_RESTRICT to) {
    for (int i = 0; i < kRunLength; ++i) {
        to[i] =
            spacing.base + static_cast<std::int32_t>(spacing.offset + spacing.step * static_cast<float>(i));
    }
}

// Rounded by truncating what was made positive.
HWY_INLINE std::int32_t Rounded(double position) {
    constexpr double kBias = kFarthest;
    const double limited = std::min(std::max(position, -kFarthest), kFarthest - 1);
    return static_cast<std::int32_t>(limited + (kBias + 0.5)) - static_cast<std::int32_t>(kBias);
}

void LocateQuotients(LinearSpacing x, LinearSpacing y, LinearSpacing denominator,
                     std::int32_t* HWY_RESTRICT toX, std::int32_t* HWY_RESTRICT toY) {
    for (int i = 0; i < kRunLength; ++i) {
        const double factor = 1 / (denominator.first + denominator.perPoint * i);
        toX[i] = Rounded((x.first + x.perPoint * i) * factor);
        toY[i] = Rounded((y.first + y.perPoint * i) * factor);
    }
}

void AddSamples(const std::uint8_t* HWY_RESTRICT pixels, bool hasAlpha, std::int32_t* HWY_RESTRICT sums) {
    if (!hasAlpha) {
        for (int i = 0; i < kRunNumbers; ++i) {
            sums[i] += pixels[i];
        }
        return;
    }
    for (int i = 0; i < kRunNumbers; i += kComponents) {
        const std::int32_t alpha = pixels[i + 3];
        for (int c = 0; c < 3; ++c) {
            sums[i + c] += pixels[i + c] * alpha;
        }
        sums[i + 3] += alpha;
    }
}

void MeanOfSamples(const std::int32_t* HWY_RESTRICT sums, int samples, bool hasAlpha,
                   std::uint8_t* HWY_RESTRICT pixels) {
    const float perSample = 1.0F / static_cast<float>(samples);
    if (!hasAlpha) {
        for (int i = 0; i < kRunNumbers; ++i) {
            pixels[i] = RoundToByte(static_cast<float>(sums[i]) * perSample);
        }
        return;
    }
    for (int i = 0; i < kRunNumbers; i += kComponents) {
        const float perAlpha = 1.0F / static_cast<float>(std::max(sums[i + 3], 1));
        for (int c = 0; c < 3; ++c) {
            pixels[i + c] = RoundToByte(static_cast<float>(sums[i + c]) * perAlpha);
        }
        pixels[i + 3] = RoundToByte(static_cast<float>(sums[i + 3]) * perSample);
    }
}

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(BoundsOf);
HWY_EXPORT(LocateEvenly);
HWY_EXPORT(LocateQuotients);
HWY_EXPORT(AddSamples);
HWY_EXPORT(MeanOfSamples);

SampleBounds BoundsOf(const SampleRun& run) {
    return HWY_DYNAMIC_DISPATCH(BoundsOf)(run);
}

void LocateEvenly(EvenSpacing spacing, std::int32_t* to) {
    HWY_DYNAMIC_DISPATCH(LocateEvenly)(spacing, to);
}

void LocateQuotients(LinearSpacing x, LinearSpacing y, LinearSpacing denominator, std::int32_t* toX,
                     std::int32_t* toY) {
    HWY_DYNAMIC_DISPATCH(LocateQuotients)(x, y, denominator, toX, toY);
}

void AddSamples(const std::uint8_t* pixels, bool hasAlpha, std::int32_t* sums) {
    HWY_DYNAMIC_DISPATCH(AddSamples)(pixels, hasAlpha, sums);
}

void MeanOfSamples(const std::int32_t* sums, int samples, bool hasAlpha, std::uint8_t* pixels) {
    HWY_DYNAMIC_DISPATCH(MeanOfSamples)(sums, samples, hasAlpha, pixels);
}

} // namespace pictorel::engine
#endif
