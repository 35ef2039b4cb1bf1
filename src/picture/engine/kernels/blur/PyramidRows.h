// The loops that halve and double rows of pixels, by averages of two.
#pragma once

#include "picture/engine/kernels/blur/Convolution.h"
#include "picture/engine/kernels/blur/FineRow.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Every average is rounded to the nearest unit, halves up. Halving weighs five taps by 1 4 6 4 1 in
// sixteenths; doubling weighs three by 1 6 1 in eighths for a new pixel that lies on the second, and takes
// the mean of the last two for one between them.
//   HalveDown: out[i] from rows[0][i] to rows[4][i]; `count` is a multiple of kFineStep.
//   HalveDownOpaque: a fine row of `width` pixels from five rows of opaque ones, which vectors may read 60
//   bytes beyond. HalveAcross: pixel x of `out` from the pixels 2x to 2x + 4 of `in`, for `width` pixels of a
//   fine row, from one of 2 width + 4. DoubleDown: as HalveDown, from three rows; to opaque pixels from fine
//   rows with halves of this length. DoubleAcross: pixels 2x and 2x + 1 of `out`, the first on the pixel x +
//   2 of `in`, for x < `width`.
namespace scalar {

void HalveDown(const Fine* const* rows, std::size_t count, Fine* out);
void HalveDownOpaque(const std::uint8_t* const* rows, int width, Fine* out);
void HalveAcross(const Fine* in, int width, Fine* out);
void DoubleDown(const Fine* const* rows, bool isBetween, std::size_t count, Fine* out);
void DoubleDownToPixels(const Fine* const* rows, bool isBetween, std::size_t half, const PixelTarget& target);
void DoubleAcross(const Fine* in, int inWidth, int width, Fine* out);

} // namespace scalar

namespace simd {

void HalveDown(const Fine* const* rows, std::size_t count, Fine* out);
void HalveDownOpaque(const std::uint8_t* const* rows, int width, Fine* out);
void HalveAcross(const Fine* in, int width, Fine* out);
void DoubleDown(const Fine* const* rows, bool isBetween, std::size_t count, Fine* out);
void DoubleDownToPixels(const Fine* const* rows, bool isBetween, std::size_t half, const PixelTarget& target);
void DoubleAcross(const Fine* in, int inWidth, int width, Fine* out);

} // namespace simd

} // namespace pictorel::engine
