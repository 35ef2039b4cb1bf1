// Noise that depends on position alone: the source of every irregularity in the scenes.
#pragma once

#include <cstdint>

namespace pictorel::sample {

// A well-mixed 32-bit value of a lattice point.
std::uint32_t Hash(std::int32_t x, std::int32_t y, std::uint32_t seed);

// The same as a number in [0, 1).
float Hash01(std::int32_t x, std::int32_t y, std::uint32_t seed);

struct NoiseValue {
    float value; // 0..1
    float dx;    // slope along x
    float dy;    // slope along y
};

// Smooth value noise with features one unit wide, and its slope.
NoiseValue ValueNoise(float x, float y, std::uint32_t seed);

// Octaves of value noise, each twice as fine and half as strong; 0..1, about 0.5 in the mean.
float Fractal(float x, float y, int octaves, std::uint32_t seed);

// Octaves that count less where the coarser ones are already steep, which leaves worn slopes with sharp
// crests (Inigo Quilez, "Value noise derivatives"). 0 to about 1.
float Eroded(float x, float y, int octaves, std::uint32_t seed);

// A stream of numbers for placing things; the same seed gives the same things everywhere.
class Randomness {
  public:
    explicit Randomness(std::uint32_t seed) : seed_(seed) {}

    // Evenly spread in [0, 1).
    float Next() { return Hash01(count_++, 0, seed_); }
    float Between(float low, float high) { return low + (high - low) * Next(); }

  private:
    std::uint32_t seed_;
    std::int32_t count_ = 0;
};

} // namespace pictorel::sample
