// The loops over the points of a run, see RunKernels.h. They are plain, and compilers turn each into vectors;
// included once for each kind of vectors and once for the plain loops.
#if defined(PICTOREL_RUN_LOOPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_RUN_LOOPS_INL_H
#undef PICTOREL_RUN_LOOPS_INL_H
#else
#define PICTOREL_RUN_LOOPS_INL_H
#endif

#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/warp/RunKernels.h"

#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {

inline SampleBounds BoundsOf(const SampleRun& run) {
    SampleBounds bounds{run.x[0], run.x[0], run.y[0], run.y[0]};
    for (int i = 1; i < run.count; ++i) {
        bounds.left = std::min(bounds.left, run.x[i]);
        bounds.right = std::max(bounds.right, run.x[i]);
        bounds.top = std::min(bounds.top, run.y[i]);
        bounds.bottom = std::max(bounds.bottom, run.y[i]);
    }
    return bounds;
}

inline void LocateEvenly(EvenSpacing spacing, int count, std::int32_t* HWY_RESTRICT to) {
    for (int i = 0; i < count; ++i) {
        to[i] =
            spacing.base + static_cast<std::int32_t>(spacing.offset + spacing.step * static_cast<float>(i));
    }
}

inline void AddSamples(const std::uint8_t* HWY_RESTRICT pixels, int count, bool hasAlpha,
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

inline void MeanOfSamples(const std::int32_t* HWY_RESTRICT sums, int count, int samples, bool hasAlpha,
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

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
