// The loops of motion blur: a mean that slides along rows, and sums of rows with weights.
#pragma once

#include "picture/engine/kernels/base/TileRows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace pictorel::engine {

// A line of `length` pixels covers the pixel and `whole` neighbours on either side, and of the next one on
// either side the share `tip`.
struct Line {
    explicit Line(double lengthInPixels)
        : length(lengthInPixels),
          whole(static_cast<int>((lengthInPixels - 1) / 2)),
          tip((lengthInPixels - 1) / 2 - whole) {}

    double length;
    int whole;
    double tip;
};

// `count` rows of `size` components, to be blurred across: each becomes the mean of its neighbours on either
// side. Beyond the ends the outermost rows go on. Steps are in bytes.
struct Stack {
    const std::uint8_t* Row(int index) const { return in + std::clamp(index, 0, count - 1) * inStep; }

    const std::uint8_t* in;
    std::ptrdiff_t inStep;
    std::uint8_t* out;
    std::ptrdiff_t outStep;
    int count;
    int size;             // rows have room for a multiple of 16
    bool streams = false; // past the cache; `out` and its step are multiples of 16 then
};

// A row to be blurred along itself: `in` goes on beyond its ends as far as the line reaches, and whole
// vectors more. `out` has room for whole vectors of 32 bytes.
struct RowAlong {
    const std::uint8_t* in;
    std::uint8_t* out;
    int width;
    bool streams;
    const std::uint8_t* ahead = nullptr; // a row of the picture that is read soon, fetched meanwhile; or null
};

// A line in 16-bit arithmetic: the mean is the sum of the whole rows, shifted left by `shift` bits, times
// `perLength`, and the sum of the two tips times `tipShare`, both in 1/32768, which gives 1/kMeanUnit of a
// level.
struct FixedLine {
    static constexpr int kMeanUnit = 32;

    // None for a line whose sum does not fit into 16 bits.
    static std::optional<FixedLine> Of(const Line& line);

    int whole;
    int shift;
    std::int16_t perLength;
    std::int16_t tipShare;
};

// Two rows that lie opposite to each other, `way` components before and behind a row, and the weight both
// have, in 1/131072.
struct WeightedPair {
    std::ptrdiff_t way;
    std::int16_t weight;
};

// Slide blurs a stack of opaque rows, SlideAlong one of them. SumPairs gives the sum of the rows around
// `centre` times their weights, each product rounded to a quarter of a wide component; the weights of all
// pairs add up to 65536.
namespace scalar {

void Slide(const Stack& stack, const FixedLine& line);
void SlideAlong(const RowAlong& row, const FixedLine& line);
void SumPairs(const WideComponent* centre, const std::vector<WeightedPair>& pairs, std::size_t count,
              WideComponent* sums);

} // namespace scalar

namespace simd {

void Slide(const Stack& stack, const FixedLine& line);
void SlideAlong(const RowAlong& row, const FixedLine& line);
void SumPairs(const WideComponent* centre, const std::vector<WeightedPair>& pairs, std::size_t count,
              WideComponent* sums);

} // namespace simd

} // namespace pictorel::engine
