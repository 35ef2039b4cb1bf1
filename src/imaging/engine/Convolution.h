// Convolution with a symmetric kernel along rows or columns, in fixed-point arithmetic.
#pragma once

#include "imaging/engine/TileRows.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::engine {

// The right half of a symmetric kernel in 1/32768: entry 0 the centre, entry k both neighbours at distance k;
// entry 0 and twice all others add up to 32768 exactly, so that a constant picture stays what it is. No entry
// is negative.
using HalfKernel = std::vector<std::int16_t>;
inline constexpr int kKernelUnit = 32768;

// Kernels of more entries are convolved slowly; wide bells are made by halving first.
inline constexpr std::size_t kUsualTaps = 13;

// A Gaussian of this standard deviation, cut where what is left out stays below a quarter of a level. Empty
// where the kernel would be a single 1.
HalfKernel GaussianKernel(double sigma);

// out[i] = what the kernel makes of taps[0][i], taps[1][i], ...: 2 kernel.size() - 1 rows of `count`
// components, the centre in the middle. Each product is rounded to the nearest wide component.
void Convolve(const WideComponent* const* taps, const HalfKernel& kernel, WideComponent* out,
              std::size_t count);

namespace scalar {

void Convolve(const WideComponent* const* taps, const HalfKernel& kernel, WideComponent* out,
              std::size_t count);

} // namespace scalar

} // namespace pictorel::engine
