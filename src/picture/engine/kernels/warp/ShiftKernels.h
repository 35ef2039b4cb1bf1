// Rows moved sideways by part of a pixel.
#pragma once

#include "picture/engine/kernels/base/CubicWeights.h"

#include <cstdint>

namespace pictorel::engine {

// A row of opaque pixels between those of another: pixel x of `out` has the weighted mean of the pixels x to
// x + 3 at `in`, as BicubicKernels has it. `out` begins on a whole vector, and `width` is a multiple of
// kVectorPixels.
struct ShiftedRow {
    const std::uint8_t* in;
    CubicWeights weights;
    int width;
    std::uint8_t* out;
    const std::uint8_t* ahead; // what is read soon, fetched meanwhile; or null
    bool streams;              // past the cache
};

struct ShiftKernels {
    void (*ShiftRow)(const ShiftedRow& row);

    static const ShiftKernels& Plain();
    static const ShiftKernels& Best();
};

} // namespace pictorel::engine
