// Convolution with a symmetric kernel along rows or columns, in fixed-point arithmetic.
#pragma once

#include "picture/engine/kernels/blur/HalfKernel.h"
#include "picture/engine/kernels/blur/WideRow.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Where the pixels of a convolved row go, and what is done to them on the way.
struct PixelTarget {
    std::uint8_t* pixels; // room for a multiple of 64 bytes, of which whole vectors are written
    int width;
    bool streams;                 // past the cache
    const std::uint8_t* original; // like `pixels`; for sharpening only
    std::int16_t share;           // amount of sharpening in kUsualSharpening / kFixedUnit, 0 for none
};

// Sharpening up to this amount is done in 16 bits.
inline constexpr int kUsualSharpening = 4;

inline constexpr int kOpaqueBits = 8; // below a level in rows of opaque pixels
inline constexpr int kOpaqueUnit = 1 << kOpaqueBits;

// Both neighbours at distance k are averaged, halves up.
struct ConvolutionKernels {
    // out[i] from taps[0][i], taps[1][i], ...: 2 kernel.size() - 1 rows of `count` components, the centre in
    // the middle. Each product is rounded to the nearest unit. Rows begin on whole vectors, and `count` is a
    // multiple of kWideStep.
    void (*Convolve)(const Wide* const* taps, const HalfKernel& kernel, Wide* out, std::size_t count);

    // The same along half a wide row: tap k is in + k pixels.
    void (*ConvolveAlong)(const Wide* in, const HalfKernel& kernel, Wide* out, std::size_t count);

    // Opaque pixels go a shorter way, in rows like wide ones, in 1/kOpaqueUnit of a level. Each product is
    // rounded down, and what that takes away is made up for at the end.
    // ConvolveAcross makes such a row of `width` pixels; the first tap of the first pixel is in[0]. Reads
    // whole vectors.
    void (*ConvolveAcross)(const std::uint8_t* in, const HalfKernel& kernel, int width, Wide* out);

    // As Convolve, of such rows.
    void (*ConvolveToPixels)(const Wide* const* taps, const HalfKernel& kernel, const PixelTarget& target);

    static const ConvolutionKernels& Plain();
    static const ConvolutionKernels& Best();
};

} // namespace pictorel::engine
