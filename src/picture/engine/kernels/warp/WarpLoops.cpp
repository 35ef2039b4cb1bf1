// Loops over the points of a run, see WarpLoops.h.
#include "picture/engine/kernels/warp/WarpLoops.h"

#include "picture/engine/kernels/base/Rounding.h"

#include <algorithm>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/warp/WarpLoops.cpp"
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

void LocateEvenly(EvenSpacing spacing, int count, std::int32_t* HWY_RESTRICT to) {
    for (int i = 0; i < count; ++i) {
        to[i] =
            spacing.base + static_cast<std::int32_t>(spacing.offset + spacing.step * static_cast<float>(i));
    }
}

void AddSamples(const std::uint8_t* HWY_RESTRICT pixels, int count, bool hasAlpha,
                std::int32_t* HWY_RESTRICT sums) {
    if (!hasAlpha) {
        for (int i = 0; i < count * kComponents; ++i) {
            sums[i] += pixels[i];
        }
        return;
    }
    for (int i = 0; i < count * kComponents; i += kComponents) {
        const std::int32_t alpha = pixels[i + 3];
        for (int c = 0; c < 3; ++c) {
            sums[i + c] += pixels[i + c] * alpha;
        }
        sums[i + 3] += alpha;
    }
}

void MeanOfSamples(const std::int32_t* HWY_RESTRICT sums, int count, int samples, bool hasAlpha,
                   std::uint8_t* HWY_RESTRICT pixels) {
    const float perSample = 1.0F / static_cast<float>(samples);
    if (!hasAlpha) {
        for (int i = 0; i < count * kComponents; ++i) {
            pixels[i] = RoundToByte(static_cast<float>(sums[i]) * perSample);
        }
        return;
    }
    for (int i = 0; i < count * kComponents; i += kComponents) {
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
HWY_EXPORT(AddSamples);
HWY_EXPORT(MeanOfSamples);

SampleBounds BoundsOf(const SampleRun& run) {
    return HWY_DYNAMIC_DISPATCH(BoundsOf)(run);
}

void LocateEvenly(EvenSpacing spacing, int count, std::int32_t* to) {
    HWY_DYNAMIC_DISPATCH(LocateEvenly)(spacing, count, to);
}

void AddSamples(const std::uint8_t* pixels, int count, bool hasAlpha, std::int32_t* sums) {
    HWY_DYNAMIC_DISPATCH(AddSamples)(pixels, count, hasAlpha, sums);
}

void MeanOfSamples(const std::int32_t* sums, int count, int samples, bool hasAlpha, std::uint8_t* pixels) {
    HWY_DYNAMIC_DISPATCH(MeanOfSamples)(sums, count, samples, hasAlpha, pixels);
}

} // namespace pictorel::engine
#endif
