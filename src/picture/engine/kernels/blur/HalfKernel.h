// Symmetric kernels in fixed point.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::engine {

// The right half of a symmetric kernel in 1/kFixedUnit: entry 0 the centre, entry k both neighbours at
// distance k together. All entries are at least 1 and add up to kFixedUnit exactly, so that a constant
// picture stays what it is.
using HalfKernel = std::vector<std::int16_t>;

// Kernels of more entries are convolved slowly; wide bells are made by halving first.
inline constexpr std::size_t kUsualTaps = 13;

// A Gaussian of this standard deviation, cut where what is left out stays below an eighth of a level. Empty
// where the kernel would be a single 1.
HalfKernel GaussianKernel(double sigma);

} // namespace pictorel::engine
