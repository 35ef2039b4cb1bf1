// Weights and row loops of the two filters that the view draws with: area means and bicubic interpolation.
#pragma once

#include "view/ViewAxis.h"

#include <array>
#include <cstdint>
#include <vector>

namespace pictorel {

// What one drawn pixel takes along one axis: weights of the source pixels from `first` on, which may lie
// before or beyond the source (its edge is repeated there). They add up to kWholeWeight exactly, so that an
// even surface keeps its colour.
struct Taps {
    int first = 0;
    std::array<std::int16_t, 4> weights{};
};

inline constexpr int kWeightBits = 14;
inline constexpr int kWholeWeight = 1 << kWeightBits;
inline constexpr int kAreaTaps = 3; // a box below two pixels' width touches three pixels
inline constexpr int kCubicTaps = 4;

// How one axis of a source falls on the device.
struct SourceScale {
    double zoom = 1.0;       // device pixels to one source pixel
    std::int64_t origin = 0; // device position of the source's edge
    double extent = 0.0;     // source pixels; the last one of a halved copy may count in part
};

// Taps of each drawn device pixel. Area: the mean of what the device pixel covers, for zooms from 0.5 on (and
// any zoom where the source is one pixel). Cubic: Catmull-Rom interpolation (a = -1/2).
std::vector<Taps> AreaTaps(const SourceScale& scale, Span drawn);
std::vector<Taps> CubicTaps(const SourceScale& scale, Span drawn);

// The source pixel under the middle of each drawn device pixel.
std::vector<int> NearestPixels(const SourceScale& scale, Span drawn);

// Pixels that MixColumns reads, and does not use, beyond the last that it needs.
inline constexpr int kMixedPadding = 2;

// mixed[i] = 64 * (sum of weights[t] * rows[t][i]) for `count` bytes; `taps` is kAreaTaps or kCubicTaps.
void MixRows(int taps, const std::array<const std::uint8_t*, 4>& rows,
             const std::array<std::int16_t, 4>& weights, int count, std::int16_t* mixed);

// Mixes along a row of MixRows, whose first pixel is source pixel `firstColumn`; one pixel for each of
// `columns`. What overshoots is cut to 0 .. 255, and colour to its pixel's alpha.
void MixColumns(const std::int16_t* mixed, int firstColumn, const std::vector<Taps>& columns,
                std::uint8_t* pixels);

// Colour times alpha for `count` pixels, in place where both pointers are the same.
void PremultiplyRow(const std::uint8_t* plain, int count, std::uint8_t* premultiplied);

} // namespace pictorel
