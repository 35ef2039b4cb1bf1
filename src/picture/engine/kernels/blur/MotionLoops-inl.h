// The loops of motion blur that compilers turn into vectors by themselves, see MotionKernels.h; included once
// for each kind of vectors and once for the plain loops.
#if defined(PICTOREL_MOTION_LOOPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_MOTION_LOOPS_INL_H
#undef PICTOREL_MOTION_LOOPS_INL_H
#else
#define PICTOREL_MOTION_LOOPS_INL_H
#endif

#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/blur/MotionKernels.h"

#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {

inline void WidenRow(const std::uint8_t* HWY_RESTRICT in, int width, MotionComponent* HWY_RESTRICT wide) {
    for (int i = 0; i < width * kComponents; i += kComponents) {
        const int alpha = in[i + 3] * kMotionUnit;
        for (int k = 0; k < 3; ++k) {
            wide[i + k] = static_cast<MotionComponent>((in[i + k] * alpha + 127) / 255);
        }
        wide[i + 3] = static_cast<MotionComponent>(alpha);
    }
}

inline void NarrowRow(const MotionComponent* HWY_RESTRICT wide, int width, std::uint8_t* HWY_RESTRICT out) {
    for (int i = 0; i < width * kComponents; i += kComponents) {
        const float perAlpha = 255.0F / static_cast<float>(std::max<int>(wide[i + 3], 1));
        for (int k = 0; k < 3; ++k) {
            out[i + k] = RoundToByte(static_cast<float>(wide[i + k]) * perAlpha);
        }
        out[i + 3] = static_cast<std::uint8_t>((wide[i + 3] + kMotionUnit / 2) / kMotionUnit);
    }
}

inline void WidenColours(const std::uint8_t* HWY_RESTRICT in, int width, MotionComponent* HWY_RESTRICT wide) {
    for (int x = 0; x < width; ++x) {
        for (int k = 0; k < 3; ++k) {
            wide[3 * x + k] = static_cast<MotionComponent>(in[kComponents * x + k] * kMotionUnit);
        }
    }
}

// What a component contributes to the sums of a picture that has alpha: premultiplied colour, scaled alpha.
inline std::int32_t Premultiplied(const std::uint8_t* pixel, int k) {
    return pixel[k] * (k == 3 ? 255 : pixel[3]);
}

inline void AddToMean(const std::uint8_t* HWY_RESTRICT row, int count, bool hasAlpha,
                      std::int32_t* HWY_RESTRICT whole) {
    if (!hasAlpha) {
        for (int i = 0; i < count; ++i) {
            whole[i] += row[i];
        }
        return;
    }
    for (int i = 0; i < count; i += kComponents) {
        for (int k = 0; k < kComponents; ++k) {
            whole[i + k] += Premultiplied(row + i, k);
        }
    }
}

inline void SlideOpaque(const MeanStep& step, int count, std::int32_t* HWY_RESTRICT whole,
                        std::uint8_t* HWY_RESTRICT out) {
    const std::uint8_t* HWY_RESTRICT before = step.before;
    const std::uint8_t* HWY_RESTRICT leaving = step.leaving;
    const std::uint8_t* HWY_RESTRICT entering = step.entering;
    const float tip = step.tip;
    const float perLength = step.perLength;
    for (int i = 0; i < count; ++i) {
        const float sum = static_cast<float>(whole[i]) + tip * static_cast<float>(before[i] + entering[i]);
        out[i] = RoundToByte(sum * perLength);
        whole[i] += entering[i] - leaving[i];
    }
}

inline void SlidePremultiplied(const MeanStep& step, int count, std::int32_t* HWY_RESTRICT whole,
                               std::uint8_t* HWY_RESTRICT out) {
    for (int i = 0; i < count; i += kComponents) {
        float sums[kComponents];
        for (int k = 0; k < kComponents; ++k) {
            const std::int32_t enters = Premultiplied(step.entering + i, k);
            const std::int32_t tips = Premultiplied(step.before + i, k) + enters;
            sums[k] = static_cast<float>(whole[i + k]) + step.tip * static_cast<float>(tips);
            whole[i + k] += enters - Premultiplied(step.leaving + i, k);
        }
        const float perAlpha = sums[3] > 0 ? 255.0F / sums[3] : 0.0F;
        for (int k = 0; k < 3; ++k) {
            out[i + k] = RoundToByte(sums[k] * perAlpha);
        }
        out[i + 3] = RoundToByte(sums[3] * step.perLength / 255.0F);
    }
}

inline void SlideRow(const MeanStep& step, int count, bool hasAlpha, std::int32_t* whole, std::uint8_t* out) {
    hasAlpha ? SlidePremultiplied(step, count, whole, out) : SlideOpaque(step, count, whole, out);
}

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
