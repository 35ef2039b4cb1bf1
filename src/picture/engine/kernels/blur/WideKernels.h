// Pixels to wide rows and back.
#pragma once

#include "picture/engine/kernels/blur/WideRow.h"

#include <cstdint>

namespace pictorel::engine {

// `width` pixels, and wide rows of as many. Rounded to nearest; colour is premultiplied where there is alpha.
struct WideKernels {
    void (*WideFromPixels)(const std::uint8_t* in, int width, bool hasAlpha, Wide* wide);
    void (*PixelsFromWide)(const Wide* wide, int width, bool hasAlpha, std::uint8_t* out);

    // in + amount (in - blurred) in colour, clamped; alpha left alone.
    void (*SharpenPixels)(const std::uint8_t* in, const Wide* blurred, int width, bool hasAlpha, float amount,
                          std::uint8_t* out);

    static const WideKernels& Plain();
    static const WideKernels& Best();
};

} // namespace pictorel::engine
