// Rays through a picture and the sums along them, for the zoom blur.
#pragma once

#include "picture/engine/kernels/base/CubicWeights.h"
#include "picture/engine/kernels/base/Sizes.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Values along a ray are in 1/128 of a level and taken at places in 1/128 of a pixel. Rays lie one behind the
// other with four components each; where they are written, up to kRaysTogether - 1 more than asked for are.
inline constexpr int kRayShareBits = 7;
inline constexpr int kRayShares = 1 << kRayShareBits;
inline constexpr int kRayPositionBits = 16; // of the places where rays cross a line
inline constexpr int kRaysTogether = 8;

// Evenly spaced rays on a line of pixels, at most a pixel apart; in 2^-kRayPositionBits of a pixel.
struct Crossing {
    std::int32_t position;
    std::int32_t step;
};

// A stretch of every ray slides outwards by a pixel: what lies between the values `before` and `entering` is
// added to its sum and, if it `leaves`, what lies between `inner` and `afterInner` taken off. The mean is
// then that of the sum and of the rest of the way before it: `inner` and `afterInner` in such shares of
// 2^-15, of their sum 2^-restShift, times `perLength`.
struct RaySlide {
    const std::int16_t* before;
    const std::int16_t* entering;
    const std::int16_t* inner;
    const std::int16_t* afterInner;
    bool leaves;
    std::int16_t innerShare;
    std::int16_t afterInnerShare;
    int restShift;
    float perLength;
};

// Pixels that lie between rays: the first at the ray `position` (in 2^-kRayPositionBits), `step` rays apart,
// never before ray 1 or behind the last but two.
struct PixelsBetween {
    std::int64_t position;
    std::int64_t step;
    int count;
    std::uint8_t* pixels;
    std::ptrdiff_t pixelStep;
};

// Levels per sum of four rays times their shares.
inline constexpr float kPerWeightedRay = 1.0F / (kRayShares << kWeightBits);

// The shares of the four rays around a position.
inline const CubicWeights& MixWeightsAt(std::int64_t position) {
    return kCubicTable[static_cast<std::size_t>(position >> (kRayPositionBits - kPhaseBits) & (kPhases - 1))];
}

// 128 / 255, by which the product of a colour and its alpha becomes a premultiplied value, in 2^-16: alpha
// itself comes out exactly.
inline constexpr std::uint16_t kPremultiplied = 32897;

// kVectorPixels pixels are readable behind the last of a line.
struct ZoomKernels {
    // The values of a line of pixels, colours times alpha. Up to kRaysTogether - 1 pixels more than asked for
    // are read and written.
    void (*PremultiplyLine)(const std::uint8_t* line, int pixels, std::int16_t* values);

    // The values where `rays` rays cross a line of opaque pixels, between them in a straight line.
    void (*Crossings)(const std::uint8_t* line, Crossing crossing, int rays, std::int16_t* values);

    // The same on a line of values, four of 16 bits a pixel.
    void (*CrossingsPremultiplied)(const std::int16_t* line, Crossing crossing, int rays,
                                   std::int16_t* values);

    // Twice what lies between two values of each of `rays` rays is added to their sums, whose order is that
    // of SlideRays.
    void (*AddInterval)(const std::int16_t* before, const std::int16_t* entering, int rays,
                        std::int32_t* sums);

    // See RaySlide; leaves the means.
    void (*SlideRays)(const RaySlide& slide, int rays, std::int32_t* sums, std::int16_t* means);

    // Opaque pixels from the means of the four rays around them.
    void (*MixRays)(const std::int16_t* means, const PixelsBetween& between);

    // Pixels with alpha, from premultiplied means.
    void (*MixRaysWithAlpha)(const std::int16_t* means, const PixelsBetween& between);

    static const ZoomKernels& Plain();
    static const ZoomKernels& Best();
};

} // namespace pictorel::engine
