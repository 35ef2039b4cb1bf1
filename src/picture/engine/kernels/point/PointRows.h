// What the operations on single pixels do to one row.
#pragma once

#include "picture/engine/kernels/point/ByteMap.h"
#include "picture/engine/kernels/point/SectionedMap.h"

#include <array>
#include <cstdint>

namespace pictorel::engine {

// Component changes by `amount`: clamped to lowest..highest first, so that the sum cannot leave 0..255.
struct ClampedSum {
    std::array<std::uint8_t, 4> lowest;
    std::array<std::uint8_t, 4> highest;
    std::array<std::uint8_t, 4> amount; // modulo 256
};

// Colours become `factor` / 2^20 times themselves plus `lumaFactor` times the scaled luma, in 1/2^20 too. The
// two add up to 1; the factor is less than 8.
struct SaturationChange {
    explicit SaturationChange(double factor);

    static constexpr int kBits = 20;
    std::int32_t factor;
    float lumaFactor;
};

// A turn of hues by 60 degrees times `sextants` + `fraction` / 65536, less than 6 sextants.
struct HueTurn {
    std::uint16_t sextants;
    std::uint16_t fraction;
};

// Plain loops that state what each operation means. `in` and `out` are rows of `width` blue, green, red,
// alpha pixels; alpha is copied.
namespace scalar {

void AddRow(const std::uint8_t* in, std::uint8_t* out, int width, const ClampedSum& sum);
void InvertRow(const std::uint8_t* in, std::uint8_t* out, int width);
void MapRow(const std::uint8_t* in, std::uint8_t* out, int width, const ColourMaps& maps);
void ThresholdRow(const std::uint8_t* in, std::uint8_t* out, int width, int level); // 0..256
void SaturationRow(const std::uint8_t* in, std::uint8_t* out, int width, const SaturationChange& change);
void HueRow(const std::uint8_t* in, std::uint8_t* out, int width, const HueTurn& turn);
void LightnessRow(const std::uint8_t* in, std::uint8_t* out, int width, float amount); // -1..1
// c + change[Y] with Y the rounded luma, clamped.
void AddByLumaRow(const std::uint8_t* in, std::uint8_t* out, int width,
                  const std::array<std::int32_t, 256>& change);
// The rounded luma of each pixel.
void LumaRow(const std::uint8_t* in, std::uint8_t* luma, int width);

} // namespace scalar

// The same in vectors of the best kind that the processor has, with the same results to the bit. Rows are
// those of a PixelArray: they are read and written in blocks of up to 64 bytes. `luma` has room for a
// multiple of 16.
namespace simd {

void AddRow(const std::uint8_t* in, std::uint8_t* out, int width, const ClampedSum& sum);
void InvertRow(const std::uint8_t* in, std::uint8_t* out, int width);
void MapRow(const std::uint8_t* in, std::uint8_t* out, int width, const SectionedMaps& maps);
void ThresholdRow(const std::uint8_t* in, std::uint8_t* out, int width, int level);
void SaturationRow(const std::uint8_t* in, std::uint8_t* out, int width, const SaturationChange& change);
void HueRow(const std::uint8_t* in, std::uint8_t* out, int width, const HueTurn& turn);
void LightnessRow(const std::uint8_t* in, std::uint8_t* out, int width, float amount);
void AddByLumaRow(const std::uint8_t* in, std::uint8_t* out, int width, const SectionedChange& change);
void LumaRow(const std::uint8_t* in, std::uint8_t* luma, int width);

} // namespace simd

} // namespace pictorel::engine
