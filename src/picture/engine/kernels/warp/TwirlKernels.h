// Where the points of a twirled row come from.
#pragma once

#include <cstdint>

namespace pictorel::engine {

// Points y below the centre, from x right of it on, one pixel apart (all in pixels). At the distance r from
// the centre the source is turned by `turns` (1 - 3 t^2 + 2 t^3) full turns, t = r / radius, and from t = 1
// on by none.
struct TwirlRow {
    float x;
    float y;
    float perRadius; // 1 / radius
    float turns;
    float unit;           // of the results, in parts of a pixel
    std::int32_t centreX; // in those units
    std::int32_t centreY;
};

struct TwirlKernels {
    // Writes `count` coordinates across and down; both have room for a multiple of 16. Angles are exact to
    // 1e-6: a thousandth of a pixel a thousand pixels from the centre.
    void (*LocateTwirl)(const TwirlRow& row, int count, std::int32_t* across, std::int32_t* down);

    static const TwirlKernels& Plain();
    static const TwirlKernels& Best();
};

// Taylor's series of the sine and the cosine, in powers of the square: enough up to a quarter turn.
inline constexpr float kSineTerms[] = {1.0F / 362880, -1.0F / 5040, 1.0F / 120, -1.0F / 6};
inline constexpr float kSineFirst = -1.0F / 39916800;
inline constexpr float kCosineTerms[] = {-1.0F / 3628800, 1.0F / 40320, -1.0F / 720, 1.0F / 24, -0.5F};
inline constexpr float kCosineFirst = 1.0F / 479001600;
inline constexpr float kHalfTurn = 3.14159265F;

} // namespace pictorel::engine
