// The loops between pixels and wide rows, see WideKernels.h. They are plain, and compilers turn each into
// vectors; included once for each kind of vectors and once for the plain loops.
#if defined(PICTOREL_WIDE_LOOPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef PICTOREL_WIDE_LOOPS_INL_H
#undef PICTOREL_WIDE_LOOPS_INL_H
#else
#define PICTOREL_WIDE_LOOPS_INL_H
#endif

#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/blur/WideRow.h"

#include <hwy/highway.h>

#include <algorithm>
#include <cstring>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {
namespace {

inline void WidenOpaque(const std::uint8_t* HWY_RESTRICT in, int width, Wide* HWY_RESTRICT lower,
                        Wide* HWY_RESTRICT upper) {
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); ++i) {
        std::uint16_t both; // read as one number, the bytes are parted without a shuffle
        std::memcpy(&both, in + 2 * i, sizeof both);
        lower[i] = static_cast<Wide>((both & 0xFFU) * kWideUnit);
        upper[i] = static_cast<Wide>((both >> 8U) * kWideUnit);
    }
}

inline void PremultiplyPixels(const std::uint8_t* HWY_RESTRICT in, int width, Wide* HWY_RESTRICT lower,
                              Wide* HWY_RESTRICT upper) {
    const auto premultiplied = [](unsigned component, unsigned alpha) {
        return static_cast<Wide>((component * alpha * kWideUnit + 127) / 255);
    };
    for (int x = 0; x < width; ++x) {
        const std::uint8_t* const pixel = in + static_cast<std::ptrdiff_t>(x) * kComponents;
        lower[2 * x] = premultiplied(pixel[0], pixel[3]);
        upper[2 * x] = premultiplied(pixel[1], pixel[3]);
        lower[2 * x + 1] = premultiplied(pixel[2], pixel[3]);
        upper[2 * x + 1] = static_cast<Wide>(pixel[3] * kWideUnit);
    }
}

inline void WideFromPixels(const std::uint8_t* in, int width, bool hasAlpha, Wide* wide) {
    Wide* const upper = wide + HalfLength(width);
    hasAlpha ? PremultiplyPixels(in, width, wide, upper) : WidenOpaque(in, width, wide, upper);
}

inline void NarrowOpaque(const Wide* HWY_RESTRICT lower, const Wide* HWY_RESTRICT upper, int width,
                         std::uint8_t* HWY_RESTRICT out) {
    for (int i = 0; i < 2 * width; ++i) {
        out[2 * i] = static_cast<std::uint8_t>((lower[i] + kWideUnit / 2U) / kWideUnit);
        out[2 * i + 1] = static_cast<std::uint8_t>((upper[i] + kWideUnit / 2U) / kWideUnit);
    }
}

// What turns a wide premultiplied component into levels.
inline float PerAlpha(int alpha) {
    return 255.0F / static_cast<float>(std::max(alpha, 1));
}

inline void Unpremultiply(const Wide* HWY_RESTRICT lower, const Wide* HWY_RESTRICT upper, int width,
                          std::uint8_t* HWY_RESTRICT out) {
    for (int x = 0; x < width; ++x) {
        const int alpha = upper[2 * x + 1];
        const float perAlpha = PerAlpha(alpha);
        std::uint8_t* const pixel = out + static_cast<std::ptrdiff_t>(x) * kComponents;
        pixel[0] = RoundToByte(static_cast<float>(lower[2 * x]) * perAlpha);
        pixel[1] = RoundToByte(static_cast<float>(upper[2 * x]) * perAlpha);
        pixel[2] = RoundToByte(static_cast<float>(lower[2 * x + 1]) * perAlpha);
        pixel[3] = static_cast<std::uint8_t>((alpha + kWideUnit / 2) / kWideUnit);
    }
}

inline void PixelsFromWide(const Wide* wide, int width, bool hasAlpha, std::uint8_t* out) {
    const Wide* const upper = wide + HalfLength(width);
    hasAlpha ? Unpremultiply(wide, upper, width, out) : NarrowOpaque(wide, upper, width, out);
}

inline void SharpenPixels(const std::uint8_t* HWY_RESTRICT in, const Wide* HWY_RESTRICT blurred, int width,
                          bool hasAlpha, float amount, std::uint8_t* HWY_RESTRICT out) {
    const Wide* const upper = blurred + HalfLength(width);
    constexpr int kOpaqueAlpha = 255 * kWideUnit;
    for (int x = 0; x < width; ++x) {
        const float perAlpha = PerAlpha(hasAlpha ? upper[2 * x + 1] : kOpaqueAlpha);
        const std::uint8_t* const original = in + static_cast<std::ptrdiff_t>(x) * kComponents;
        std::uint8_t* const pixel = out + static_cast<std::ptrdiff_t>(x) * kComponents;
        const auto sharpened = [&](std::uint8_t component, Wide soft) {
            const auto c = static_cast<float>(component);
            return RoundToByte(c + amount * (c - static_cast<float>(soft) * perAlpha));
        };
        pixel[0] = sharpened(original[0], blurred[2 * x]);
        pixel[1] = sharpened(original[1], upper[2 * x]);
        pixel[2] = sharpened(original[2], blurred[2 * x + 1]);
        pixel[3] = original[3];
    }
}

} // namespace
} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif
