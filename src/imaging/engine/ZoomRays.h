// Rays through a picture and the running sums along them, for the zoom blur.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Values along a ray are in 1/8 of a level times 1/64 of a pixel: as fine as the sum along the longest ray,
// half of the largest side, fits into 32 bits.
inline constexpr int kRayValueUnit = 8;
inline constexpr int kRayShareBits = 6;
inline constexpr int kRayShares = 1 << kRayShareBits;
inline constexpr int kRayPositionBits = 16; // of the places where rays pass

// Rays are stored one behind the other with four components each, their number rounded up to this.
inline constexpr int kRaysTogether = 4;

// A line of pixels that rays cross: pixel `first`, `first` + 1, ... of `size`, `step` bytes apart; beyond its
// ends the line is continued by its end pixels.
struct PixelLine {
    const std::uint8_t* pixels;
    std::ptrdiff_t step;
    int size;
    int first;
};

// Where evenly spaced rays cross a line, from its first pixel on.
struct Crossing {
    std::int32_t position;
    std::int32_t step;
};

// The mean over a stretch of each ray, made from running sums at both of its ends: to the middle between the
// sums `outer` and `beyondOuter`, from a point between three consecutive sums.
struct Stretch {
    const std::int32_t* outer;
    const std::int32_t* beyondOuter;
    const std::int32_t* beforeInner;
    const std::int32_t* inner;
    const std::int32_t* beyondInner;
    float shareBefore;
    float shareBeyond;
    float perLength;
};

// Pixels that lie between rays: the first at the ray `position`, `step` rays apart; `lastRay` is the one
// before the last.
struct PixelsBetween {
    double position;
    double step;
    int count;
    int lastRay;
    std::uint8_t* pixels;
    std::ptrdiff_t pixelStep;
};

// PairPixels: eight numbers for each of `count` pixels: the value of each component and, behind it, that of
//     the next pixel; premultiplied where there is alpha.
// AddCrossings: after = before + what each of `rays` rays meets between two of those pixels.
// MeansOf: the means over a stretch, for all components of `rays` rays.
// MixMeans: pixels from the means of the rays next to them.
namespace scalar {
void PairPixels(const PixelLine& line, int count, bool hasAlpha, std::int16_t* pairs);
void AddCrossings(const std::int16_t* pairs, Crossing crossing, int rays, const std::int32_t* before,
                  std::int32_t* after);
void MeansOf(const Stretch& stretch, int rays, float* means);
void MixMeans(const float* means, const PixelsBetween& between, bool hasAlpha);
} // namespace scalar
namespace simd { // the same with the best vectors that the processor has
void PairPixels(const PixelLine& line, int count, bool hasAlpha, std::int16_t* pairs);
void AddCrossings(const std::int16_t* pairs, Crossing crossing, int rays, const std::int32_t* before,
                  std::int32_t* after);
void MeansOf(const Stretch& stretch, int rays, float* means); // rays rounded up
void MixMeans(const float* means, const PixelsBetween& between, bool hasAlpha);
} // namespace simd

} // namespace pictorel::engine
