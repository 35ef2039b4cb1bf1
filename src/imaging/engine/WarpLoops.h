// Loops over the points of a run: where they come from, and the mean of several samples. They are plain; the
// compiler turns each into vectors for every processor, and the best fit is chosen at run time.
#pragma once

#include "imaging/engine/WarpSampler.h"

#include <cstdint>

namespace pictorel::engine {

inline constexpr int kRunNumbers = kRunLength * PixelArray::kComponents;

// Of the points that the run counts. The other loops go over whole runs of kRunLength points.
SampleBounds BoundsOf(const SampleRun& run);

// Truncated `base` + `offset` + i `step`; the last two must not add up to less than 0.
struct EvenSpacing {
    std::int32_t base;
    float offset;
    float step;
};
void LocateEvenly(EvenSpacing spacing, std::int32_t* to);

// x / denominator and y / denominator, rounded and limited to +-kFarthest, each of which grows evenly.
struct LinearSpacing {
    double first;
    double perPoint;
};
inline constexpr double kFarthest = 1 << 30;
void LocateQuotients(LinearSpacing x, LinearSpacing y, LinearSpacing denominator, std::int32_t* toX,
                     std::int32_t* toY);

// sums += pixels, colours times alpha where there is alpha.
void AddSamples(const std::uint8_t* pixels, bool hasAlpha, std::int32_t* sums);

// Pixels from the sums of so many samples.
void MeanOfSamples(const std::int32_t* sums, int samples, bool hasAlpha, std::uint8_t* pixels);

} // namespace pictorel::engine
