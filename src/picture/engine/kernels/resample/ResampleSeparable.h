// Makes a picture whose pixels are weighted sums of a source's rows and columns.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/kernels/resample/ResampleAxis.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// The result is columns.Length() x rows.Length() pixels, computed in single precision on premultiplied colour
// where the source has alpha, and rounded once.
PixelArray ResampleSeparable(const PixelArray& source, const AxisWeights& columns, const AxisWeights& rows);

// The two passes, on four floats a pixel. `from` is the first component of the first source row that has a
// weight; `to` gets `pixels` pixels.
void SumRows(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights, int pixels,
             float* to);
void SumRowsPremultiplied(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights,
                          int pixels, float* to);
// Rounds columns.Length() pixels made of the row `from` to bytes.
void SumColumns(const float* from, const AxisWeights& columns, std::uint8_t* to);
void SumColumnsPremultiplied(const float* from, const AxisWeights& columns, std::uint8_t* to);

// The same results by plain scalar code: what the above are tested against.
void SumRowsReference(const std::uint8_t* from, std::ptrdiff_t stride, std::span<const float> weights,
                      int pixels, float* to);
void SumRowsPremultipliedReference(const std::uint8_t* from, std::ptrdiff_t stride,
                                   std::span<const float> weights, int pixels, float* to);
void SumColumnsReference(const float* from, const AxisWeights& columns, std::uint8_t* to);
void SumColumnsPremultipliedReference(const float* from, const AxisWeights& columns, std::uint8_t* to);

} // namespace pictorel::engine
