// Rows and columns summed with weights in single precision, on four floats a pixel.
#pragma once

#include "picture/engine/kernels/resample/ResampleAxis.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace pictorel::engine {

struct SeparableKernels {
    // `from` is the first component of the first source row that has a weight, rows `stride` bytes apart;
    // `to` gets `pixels` pixels.
    void (*SumRows)(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights,
                    int pixels, float* to);

    // The same, of colours times alpha and of alpha.
    void (*SumRowsPremultiplied)(const std::uint8_t* from, std::ptrdiff_t stride,
                                 std::span<const float> weights, int pixels, float* to);

    // Rounds columns.Length() pixels made of the row `from` to bytes.
    void (*SumColumns)(const float* from, const AxisWeights& columns, std::uint8_t* to);

    // The same of premultiplied ones.
    void (*SumColumnsPremultiplied)(const float* from, const AxisWeights& columns, std::uint8_t* to);

    static const SeparableKernels& Plain();
    static const SeparableKernels& Best();
};

} // namespace pictorel::engine
