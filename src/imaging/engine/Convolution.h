// Convolution with a symmetric kernel along rows or columns, in exact fixed-point arithmetic.
#pragma once

#include "imaging/engine/Tiles.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::engine {

// The right half of a symmetric kernel in 1/32768: entry 0 the centre, entry k both neighbours at distance k;
// entry 0 and twice all others add up to 32768 exactly, so that a constant picture stays what it is. No entry
// is negative.
using HalfKernel = std::vector<std::int16_t>;
inline constexpr int kKernelUnit = 32768;

// A Gaussian of this standard deviation, cut where what is left out stays below a quarter of a level. Empty
// where the kernel would be a single 1.
HalfKernel GaussianKernel(double sigma);

// out[i] = the mean of in[i - k step] and in[i + k step] over all k, weighted by `kernel` and rounded, for
// 0 <= i < count. `in` is readable for kernel.size() - 1 steps on either side.
void Convolve(const WideComponent* in, std::ptrdiff_t step, const HalfKernel& kernel, WideComponent* out,
              std::size_t count);

namespace scalar {

void Convolve(const WideComponent* in, std::ptrdiff_t step, const HalfKernel& kernel, WideComponent* out,
              std::size_t count);

} // namespace scalar

} // namespace pictorel::engine
