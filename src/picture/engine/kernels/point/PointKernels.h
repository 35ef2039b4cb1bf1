// What the operations on single pixels do to one row.
#pragma once

#include "picture/engine/kernels/base/Luma.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace pictorel::engine {

// Component changes by `amount`: clamped to lowest..highest first, so that the sum cannot leave 0..255.
struct ClampedSum {
    std::array<std::uint8_t, 4> lowest;
    std::array<std::uint8_t, 4> highest;
    std::array<std::uint8_t, 4> amount; // modulo 256
};

// Colours become `factor` times themselves plus `lumaFactor` times the scaled luma, both in 1/2^kBits. The
// two add up to 1; the factor is less than 8.
struct SaturationChange {
    static constexpr int kBits = 20;

    explicit SaturationChange(double exactFactor)
        : factor(static_cast<std::int32_t>(std::lround(exactFactor * (1 << kBits)))),
          lumaFactor(static_cast<float>((1 - exactFactor) * (1 << kBits) / kLumaUnit)) {}

    std::int32_t factor;
    float lumaFactor;
};

// A turn of hues by 60 degrees times `sextants` + `fraction` / kUnit, less than 6 sextants.
struct HueTurn {
    static constexpr int kUnit = 65536;

    std::uint16_t sextants;
    std::uint16_t fraction;
};

// `in` and `out` are rows of `width` pixels of a PixelArray: read and written in blocks of up to 64 bytes.
// Alpha is copied.
struct PointKernels {
    void (*AddRow)(const std::uint8_t* in, std::uint8_t* out, int width, const ClampedSum& sum);

    // 255 - c.
    void (*InvertRow)(const std::uint8_t* in, std::uint8_t* out, int width);

    // White where the exact luma is at least `level` (0 to 256), else black.
    void (*ThresholdRow)(const std::uint8_t* in, std::uint8_t* out, int width, int level);

    // Rounded to nearest and clamped.
    void (*SaturationRow)(const std::uint8_t* in, std::uint8_t* out, int width,
                          const SaturationChange& change);

    // The HSL hue turned, lightness and saturation kept; rounded to nearest.
    void (*HueRow)(const std::uint8_t* in, std::uint8_t* out, int width, const HueTurn& turn);

    // The HSL lightness moved by the fraction `amount` (-1 to 1) towards white or black; halves go to even.
    void (*LightnessRow)(const std::uint8_t* in, std::uint8_t* out, int width, float amount);

    // The luma of each pixel, rounded to 0..255; `luma` has room for a multiple of 16.
    void (*LumaRow)(const std::uint8_t* in, std::uint8_t* luma, int width);

    static const PointKernels& Plain();
    static const PointKernels& Best();
};

} // namespace pictorel::engine
