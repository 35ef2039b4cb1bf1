// The loops of motion blur: a mean that slides along rows, and sums of rows with weights.
#pragma once

#include "picture/engine/kernels/blur/MotionLine.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace pictorel::engine {

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

// One step of a running mean over rows: out = (whole + tip (before + entering)) perLength, then `entering` is
// added to `whole` and `leaving` taken off.
struct MeanStep {
    const std::uint8_t* before;
    const std::uint8_t* leaving;
    const std::uint8_t* entering;
    float tip;
    float perLength;
};

// Two rows that lie opposite to each other, `way` components before and behind a row, and the weight both
// have.
struct WeightedPair {
    static constexpr int kUnit = 131072;

    std::ptrdiff_t way;
    std::int16_t weight; // in 1/kUnit
};

struct MotionKernels {
    // Blurs a stack of opaque rows across, in 16-bit arithmetic; rounded to nearest.
    void (*Slide)(const Stack& stack, const FixedLine& line);

    // Blurs one opaque row along itself in the same way.
    void (*SlideAlong)(const RowAlong& row, const FixedLine& line);

    // One step of a stack whose line no FixedLine can hold, `count` components; and what `whole` begins with:
    // whole += row, as SlideRow adds it.
    void (*SlideRow)(const MeanStep& step, int count, bool hasAlpha, std::int32_t* whole, std::uint8_t* out);
    void (*AddToMean)(const std::uint8_t* row, int count, bool hasAlpha, std::int32_t* whole);

    // 8-bit pixels with alpha to premultiplied motion components and back; the rows do not overlap.
    void (*WidenRow)(const std::uint8_t* in, int width, MotionComponent* wide);
    void (*NarrowRow)(const MotionComponent* wide, int width, std::uint8_t* out);

    // The same of opaque pixels' colours alone: three motion components a pixel.
    void (*WidenColours)(const std::uint8_t* in, int width, MotionComponent* wide);
    void (*NarrowColours)(const MotionComponent* wide, int width, std::uint8_t* out);

    // The sum of the rows around `centre` times their weights, each product rounded to a quarter of a motion
    // component's unit; the weights of all pairs add up to one half.
    void (*SumPairs)(const MotionComponent* centre, const std::vector<WeightedPair>& pairs, std::size_t count,
                     MotionComponent* sums);

    static const MotionKernels& Plain();
    static const MotionKernels& Best();
};

} // namespace pictorel::engine
