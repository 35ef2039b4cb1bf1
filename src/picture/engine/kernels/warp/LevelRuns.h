// Bicubic interpolation of runs whose points all come from one line between two rows.
#pragma once

#include "picture/engine/kernels/warp/WarpSampler.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// The rows around the line are mixed once for all points, which leaves four neighbours of sixteen to each:
// the same as SampleOpaque, within a quarter of a level, where run.y is one number and run.bounds are right.
// At most kLevelWidth pixels of a row take part.
inline constexpr int kLevelWidth = 512;

// Whether the source pixels of a run are that few.
inline bool IsNarrow(const SampleBounds& bounds) {
    return (bounds.right - bounds.left) >> kPhaseBits < kLevelWidth - 4;
}

namespace scalar {
void SampleLevel(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to);
}
namespace simd { // the same with the best vectors that the processor has
void SampleLevel(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run, std::uint8_t* to);
}

// Mixed rows are in 1/64 of a level, which leaves room for what a cubic overshoots; mixed pixels, with a bit
// less, in 1/32.
inline constexpr int kMixedBits = 6;

} // namespace pictorel::engine
