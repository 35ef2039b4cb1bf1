// Bicubic interpolation of horizontal runs: all points come from one line between two rows.
#pragma once

#include "picture/engine/kernels/warp/SampleRun.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// At most this many pixels of a row take part.
inline constexpr int kHorizontalWidth = 512;

// Whether the source pixels of a run are that few.
inline bool IsNarrow(const SampleBounds& bounds) {
    return (bounds.right - bounds.left) >> kPhaseBits < kHorizontalWidth - 4;
}

// Mixed rows are in 1/64 of a level, which leaves room for what a cubic overshoots; mixed pixels, with a bit
// less, in 1/32.
inline constexpr int kMixedBits = 6;

struct HorizontalKernels {
    // The rows around the line are mixed once for all points, which leaves four neighbours of sixteen to
    // each: the same as BicubicKernels::SampleOpaque, within a quarter of a level, where run.y is one number,
    // run.bounds are right and the run IsNarrow.
    void (*SampleHorizontal)(const std::uint8_t* pixels, std::ptrdiff_t stride, const SampleRun& run,
                             std::uint8_t* to);

    static const HorizontalKernels& Plain();
    static const HorizontalKernels& Best();
};

} // namespace pictorel::engine
