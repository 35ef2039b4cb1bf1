// Loops over the points of a run: where they come from, and the mean of several samples.
#pragma once

#include "picture/engine/kernels/warp/SampleRun.h"

#include <cstdint>

namespace pictorel::engine {

// Places truncated to `base` + `offset` + i `step`; the last two must not add up to less than 0.
struct EvenSpacing {
    std::int32_t base;
    float offset;
    float step;
};

struct RunKernels {
    // Of the points that the run counts, one or more.
    SampleBounds (*BoundsOf)(const SampleRun& run);

    // `count` evenly spaced places.
    void (*LocateEvenly)(EvenSpacing spacing, int count, std::int32_t* to);

    // sums += pixels, of `count` pixels, colours times alpha where there is alpha.
    void (*AddSamples)(const std::uint8_t* pixels, int count, bool hasAlpha, std::int32_t* sums);

    // `count` pixels from the sums of so many samples, rounded to nearest.
    void (*MeanOfSamples)(const std::int32_t* sums, int count, int samples, bool hasAlpha,
                          std::uint8_t* pixels);

    static const RunKernels& Plain();
    static const RunKernels& Best();
};

} // namespace pictorel::engine
