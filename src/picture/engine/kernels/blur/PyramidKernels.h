// The loops that halve and double rows of pixels, by averages of two.
#pragma once

#include "picture/engine/kernels/blur/ConvolutionKernels.h"
#include "picture/engine/kernels/blur/WideRow.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Every average is rounded to the nearest unit, halves up. Halving weighs five taps by 1 4 6 4 1 in
// sixteenths; doubling weighs three by 1 6 1 in eighths for a new pixel that lies on the second, and takes
// the mean of the last two for one between them (`isBetween`).
struct PyramidKernels {
    // out[i] from rows[0][i] to rows[4][i]; `count` is a multiple of kWideStep.
    void (*HalveDown)(const Wide* const* rows, std::size_t count, Wide* out);

    // A wide row of `width` pixels from five rows of opaque ones, which vectors may read 60 bytes beyond.
    void (*HalveDownOpaque)(const std::uint8_t* const* rows, int width, Wide* out);

    // Pixel x of `out` from the pixels 2x to 2x + 4 of `in`: `width` pixels of a wide row, from one of
    // 2 width + 4.
    void (*HalveAcross)(const Wide* in, int width, Wide* out);

    // As HalveDown, from three rows.
    void (*DoubleDown)(const Wide* const* rows, bool isBetween, std::size_t count, Wide* out);

    // The same to opaque pixels, from three wide rows with halves of the length `half`.
    void (*DoubleDownToPixels)(const Wide* const* rows, bool isBetween, std::size_t half,
                               const PixelTarget& target);

    // Pixels 2x and 2x + 1 of `out`, the first on the pixel x + 2 of `in` (a wide row of `inWidth` pixels),
    // for x < `width`.
    void (*DoubleAcross)(const Wide* in, int inWidth, int width, Wide* out);

    static const PyramidKernels& Plain();
    static const PyramidKernels& Best();
};

} // namespace pictorel::engine
