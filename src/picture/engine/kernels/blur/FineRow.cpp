// Pixels to fine rows and back, see FineRow.h. The loops are plain: the compiler turns each into vectors for
// every processor, and the best fit is chosen at run time.
#include "picture/engine/kernels/blur/FineRow.h"

#include "picture/engine/kernels/base/Rounding.h"

#include <algorithm>
#include <cstring>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "picture/engine/kernels/blur/FineRow.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace pictorel::engine::HWY_NAMESPACE {

constexpr int kComponents = PixelArray::kComponents;

void WidenOpaque(const std::uint8_t* HWY_RESTRICT in, int width, Fine* HWY_RESTRICT lower,
                 Fine* HWY_RESTRICT upper) {
    for (std::size_t i = 0; i < 2 * static_cast<std::size_t>(width); ++i) {
        std::uint16_t both; // read as one number, the bytes are parted without a shuffle
        std::memcpy(&both, in + 2 * i, sizeof both);
        lower[i] = static_cast<Fine>((both & 0xFFU) * kFineUnit);
        upper[i] = static_cast<Fine>((both >> 8U) * kFineUnit);
    }
}

void Premultiply(const std::uint8_t* HWY_RESTRICT in, int width, Fine* HWY_RESTRICT lower,
                 Fine* HWY_RESTRICT upper) {
    const auto premultiplied = [](unsigned component, unsigned alpha) {
        return static_cast<Fine>((component * alpha * kFineUnit + 127) / 255);
    };
    for (int x = 0; x < width; ++x) {
        const std::uint8_t* const pixel = in + static_cast<std::ptrdiff_t>(x) * kComponents;
        lower[2 * x] = premultiplied(pixel[0], pixel[3]);
        upper[2 * x] = premultiplied(pixel[1], pixel[3]);
        lower[2 * x + 1] = premultiplied(pixel[2], pixel[3]);
        upper[2 * x + 1] = static_cast<Fine>(pixel[3] * kFineUnit);
    }
}

void FineFromPixels(const std::uint8_t* in, int width, bool hasAlpha, Fine* fine) {
    Fine* const upper = fine + HalfLength(width);
    hasAlpha ? Premultiply(in, width, fine, upper) : WidenOpaque(in, width, fine, upper);
}

void NarrowOpaque(const Fine* HWY_RESTRICT lower, const Fine* HWY_RESTRICT upper, int width,
                  std::uint8_t* HWY_RESTRICT out) {
    for (int i = 0; i < 2 * width; ++i) {
        out[2 * i] = static_cast<std::uint8_t>((lower[i] + kFineUnit / 2U) / kFineUnit);
        out[2 * i + 1] = static_cast<std::uint8_t>((upper[i] + kFineUnit / 2U) / kFineUnit);
    }
}

// What turns a fine premultiplied component into levels.
inline float PerAlpha(int alpha) {
    return 255.0F / static_cast<float>(std::max(alpha, 1));
}

void Unpremultiply(const Fine* HWY_RESTRICT lower, const Fine* HWY_RESTRICT upper, int width,
                   std::uint8_t* HWY_RESTRICT out) {
    for (int x = 0; x < width; ++x) {
        const int alpha = upper[2 * x + 1];
        const float perAlpha = PerAlpha(alpha);
        std::uint8_t* const pixel = out + static_cast<std::ptrdiff_t>(x) * kComponents;
        pixel[0] = RoundToByte(static_cast<float>(lower[2 * x]) * perAlpha);
        pixel[1] = RoundToByte(static_cast<float>(upper[2 * x]) * perAlpha);
        pixel[2] = RoundToByte(static_cast<float>(lower[2 * x + 1]) * perAlpha);
        pixel[3] = static_cast<std::uint8_t>((alpha + kFineUnit / 2) / kFineUnit);
    }
}

void PixelsFromFine(const Fine* fine, int width, bool hasAlpha, std::uint8_t* out) {
    const Fine* const upper = fine + HalfLength(width);
    hasAlpha ? Unpremultiply(fine, upper, width, out) : NarrowOpaque(fine, upper, width, out);
}

void SharpenPixels(const std::uint8_t* HWY_RESTRICT in, const Fine* HWY_RESTRICT blurred, int width,
                   bool hasAlpha, float amount, std::uint8_t* HWY_RESTRICT out) {
    const Fine* const upper = blurred + HalfLength(width);
    constexpr int kOpaque = 255 * kFineUnit;
    for (int x = 0; x < width; ++x) {
        const float perAlpha = PerAlpha(hasAlpha ? upper[2 * x + 1] : kOpaque);
        const std::uint8_t* const original = in + static_cast<std::ptrdiff_t>(x) * kComponents;
        std::uint8_t* const pixel = out + static_cast<std::ptrdiff_t>(x) * kComponents;
        const auto sharpened = [&](std::uint8_t component, Fine soft) {
            const auto c = static_cast<float>(component);
            return RoundToByte(c + amount * (c - static_cast<float>(soft) * perAlpha));
        };
        pixel[0] = sharpened(original[0], blurred[2 * x]);
        pixel[1] = sharpened(original[1], upper[2 * x]);
        pixel[2] = sharpened(original[2], blurred[2 * x + 1]);
        pixel[3] = original[3];
    }
}

} // namespace pictorel::engine::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace pictorel::engine {

HWY_EXPORT(FineFromPixels);
HWY_EXPORT(PixelsFromFine);
HWY_EXPORT(SharpenPixels);

void FineFromPixels(const std::uint8_t* in, int width, bool hasAlpha, Fine* fine) {
    HWY_DYNAMIC_DISPATCH(FineFromPixels)(in, width, hasAlpha, fine);
}

void PixelsFromFine(const Fine* fine, int width, bool hasAlpha, std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(PixelsFromFine)(fine, width, hasAlpha, out);
}

void SharpenPixels(const std::uint8_t* in, const Fine* blurred, int width, bool hasAlpha, float amount,
                   std::uint8_t* out) {
    HWY_DYNAMIC_DISPATCH(SharpenPixels)(in, blurred, width, hasAlpha, amount, out);
}

} // namespace pictorel::engine
#endif
