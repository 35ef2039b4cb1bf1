// Value noise on an integer lattice, and the sums of its octaves.
#include "Noise.h"

namespace pictorel::sample {

namespace {

// Turning each octave by about 37 degrees hides the lattice's axes.
constexpr float kTurnCos = 0.8F;
constexpr float kTurnSin = 0.6F;

// std::floor is a library call on the plain x86-64 that we build for, and noise calls it more than anything.
std::int32_t FloorToInt(float v) {
    const auto whole = static_cast<std::int32_t>(v);
    return whole - (v < static_cast<float>(whole) ? 1 : 0);
}

void NextOctave(float& x, float& y) {
    const float turned = 2.0F * (kTurnCos * x - kTurnSin * y) + 17.3F;
    y = 2.0F * (kTurnSin * x + kTurnCos * y) - 9.7F;
    x = turned;
}

} // namespace

std::uint32_t Hash(std::int32_t x, std::int32_t y, std::uint32_t seed) {
    std::uint32_t h = static_cast<std::uint32_t>(x) * 0x9E3779B1U ^
                      static_cast<std::uint32_t>(y) * 0x85EBCA77U ^ seed * 0xC2B2AE3DU;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return h ^ (h >> 15);
}

float Hash01(std::int32_t x, std::int32_t y, std::uint32_t seed) {
    return static_cast<float>(Hash(x, y, seed) >> 8) * (1.0F / 16777216.0F);
}

NoiseValue ValueNoise(float x, float y, std::uint32_t seed) {
    const std::int32_t cellX = FloorToInt(x);
    const std::int32_t cellY = FloorToInt(y);
    const float s = x - static_cast<float>(cellX);
    const float t = y - static_cast<float>(cellY);
    // Quintic blending keeps the slope itself smooth, which lighting would otherwise show as creases.
    const float blendX = s * s * s * (s * (s * 6.0F - 15.0F) + 10.0F);
    const float blendY = t * t * t * (t * (t * 6.0F - 15.0F) + 10.0F);
    const float slopeX = 30.0F * s * s * (s * (s - 2.0F) + 1.0F);
    const float slopeY = 30.0F * t * t * (t * (t - 2.0F) + 1.0F);

    const float a = Hash01(cellX, cellY, seed);
    const float b = Hash01(cellX + 1, cellY, seed);
    const float c = Hash01(cellX, cellY + 1, seed);
    const float d = Hash01(cellX + 1, cellY + 1, seed);
    const float alongX = b - a;
    const float alongY = c - a;
    const float twist = a - b - c + d;
    return {a + alongX * blendX + alongY * blendY + twist * blendX * blendY,
            slopeX * (alongX + twist * blendY), slopeY * (alongY + twist * blendX)};
}

float Fractal(float x, float y, int octaves, std::uint32_t seed) {
    float sum = 0.0F;
    float weight = 0.5F;
    float total = 0.0F;
    for (int i = 0; i < octaves; ++i) {
        sum += weight * ValueNoise(x, y, seed).value;
        total += weight;
        weight *= 0.5F;
        NextOctave(x, y);
    }
    return sum / total;
}

float Eroded(float x, float y, int octaves, std::uint32_t seed) {
    float sum = 0.0F;
    float weight = 0.5F;
    float slopeX = 0.0F;
    float slopeY = 0.0F;
    for (int i = 0; i < octaves; ++i) {
        const NoiseValue n = ValueNoise(x, y, seed);
        slopeX += n.dx;
        slopeY += n.dy;
        sum += weight * n.value / (1.0F + slopeX * slopeX + slopeY * slopeY);
        weight *= 0.5F;
        NextOctave(x, y);
    }
    return sum;
}

} // namespace pictorel::sample
