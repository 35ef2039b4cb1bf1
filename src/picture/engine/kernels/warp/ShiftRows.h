// Rows moved sideways by part of a pixel.
#pragma once

#include "picture/engine/kernels/warp/WarpKernel.h"

#include <cstdint>

namespace pictorel::engine {

// A row of opaque pixels between those of another: pixel x of `out` has the weighted mean of the pixels x to
// x + 3 at `in`, as SampleOpaque has it. `out` begins on a whole vector, and `width` is a multiple of
// kShiftedTogether.
struct ShiftedRow {
    const std::uint8_t* in;
    CubicWeights weights;
    int width;
    std::uint8_t* out;
    const std::uint8_t* ahead; // what is read soon, fetched meanwhile; or null
    bool streams;              // past the cache
};

inline constexpr int kShiftedTogether = 16; // pixels in the longest vector

namespace scalar {
void ShiftRow(const ShiftedRow& row);
}
namespace simd { // the same with the best vectors that the processor has
void ShiftRow(const ShiftedRow& row);
}

} // namespace pictorel::engine
