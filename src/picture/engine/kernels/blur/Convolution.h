// Convolution with a symmetric kernel along rows or columns, in fixed-point arithmetic.
#pragma once

#include "picture/engine/kernels/blur/FineRow.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::engine {

// The right half of a symmetric kernel in 1/32768: entry 0 the centre, entry k both neighbours at distance k
// together. All entries are at least 1 and add up to 32768 exactly, so that a constant picture stays what it
// is.
using HalfKernel = std::vector<std::int16_t>;
inline constexpr int kKernelUnit = 32768;

// Kernels of more entries are convolved slowly; wide bells are made by halving first.
inline constexpr std::size_t kUsualTaps = 13;

// A Gaussian of this standard deviation, cut where what is left out stays below an eighth of a level. Empty
// where the kernel would be a single 1.
HalfKernel GaussianKernel(double sigma);

// Where the pixels of a convolved row go, and what is done to them on the way.
struct PixelTarget {
    std::uint8_t* pixels; // room for a multiple of 64 bytes, of which whole vectors are written
    int width;
    bool streams;                 // past the cache
    const std::uint8_t* original; // like `pixels`; for sharpening only
    std::int16_t share;           // amount of sharpening in 1/8192, 0 for none
};

// Sharpening up to this amount is done in 16 bits.
inline constexpr int kUsualSharpening = 4;

// Both neighbours at distance k are averaged, halves up.
//   Convolve: out[i] from taps[0][i], taps[1][i], ...: 2 kernel.size() - 1 rows of `count` components, the
//   centre in the middle. Each product is rounded to the nearest unit. Rows begin on whole vectors, and
//   `count` is a multiple of kFineStep. ConvolveAlong: the same along half a fine row: tap k is in + k
//   pixels.
// Opaque pixels go a shorter way, in rows like fine ones whose unit is 1/256 of a level. Each product is
// rounded down, and what that takes away is made up for at the end.
//   ConvolveAcross: such a row of `width` pixels; the first tap of the first pixel is in[0]. Reads whole
//   vectors.
//   ConvolveToPixels: as Convolve, of such rows.
namespace scalar {

void Convolve(const Fine* const* taps, const HalfKernel& kernel, Fine* out, std::size_t count);
void ConvolveAlong(const Fine* in, const HalfKernel& kernel, Fine* out, std::size_t count);
void ConvolveAcross(const std::uint8_t* in, const HalfKernel& kernel, int width, Fine* out);
void ConvolveToPixels(const Fine* const* taps, const HalfKernel& kernel, const PixelTarget& target);

} // namespace scalar

namespace simd {

void Convolve(const Fine* const* taps, const HalfKernel& kernel, Fine* out, std::size_t count);
void ConvolveAlong(const Fine* in, const HalfKernel& kernel, Fine* out, std::size_t count);
void ConvolveAcross(const std::uint8_t* in, const HalfKernel& kernel, int width, Fine* out);
void ConvolveToPixels(const Fine* const* taps, const HalfKernel& kernel, const PixelTarget& target);

} // namespace simd

} // namespace pictorel::engine
