// Points of a source that are sampled in one go.
#pragma once

#include "picture/engine/kernels/base/CubicWeights.h"

#include <array>
#include <cstdint>

namespace pictorel::engine {

inline constexpr int kRunLength = 256; // pixels of a row that are sampled in one go

// Smallest and largest coordinates, inclusive.
struct SampleBounds {
    std::int32_t left, right, top, bottom;
};

// Points are given as distances from the centre of the source's top left pixel, in 1/kPhases of a pixel.
struct SampleRun {
    int count = 0;             // at most kRunLength
    bool isHorizontal = false; // whether all points have the same y
    SampleBounds bounds{};
    std::array<std::int32_t, kRunLength> x{};
    std::array<std::int32_t, kRunLength> y{};
};

} // namespace pictorel::engine
