// Loops over the points of a run: where they come from, and the mean of several samples. They are plain; the
// compiler turns each into vectors for every processor, and the best fit is chosen at run time.
#pragma once

#include "picture/engine/kernels/warp/WarpSampler.h"

#include <cstdint>

namespace pictorel::engine {

// Of the points that the run counts.
SampleBounds BoundsOf(const SampleRun& run);

// Truncated `base` + `offset` + i `step`; the last two must not add up to less than 0.
struct EvenSpacing {
    std::int32_t base;
    float offset;
    float step;
};
void LocateEvenly(EvenSpacing spacing, int count, std::int32_t* to);

// sums += pixels, of `count` pixels, colours times alpha where there is alpha.
void AddSamples(const std::uint8_t* pixels, int count, bool hasAlpha, std::int32_t* sums);

// Pixels from the sums of so many samples.
void MeanOfSamples(const std::int32_t* sums, int count, int samples, bool hasAlpha, std::uint8_t* pixels);

} // namespace pictorel::engine
