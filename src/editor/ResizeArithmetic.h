// Derived picture sizes: a percentage of a size, or one side from the other in proportion.
#pragma once

#include <QString>

#include <cstdint>

namespace pictorel {

// "W,H" in decimal. By percent: both sides x percent / 100. Otherwise the side given as -1 is derived from
// the other in the proportions of width0 x height0; with neither -1 the result is empty. Rounds to nearest,
// halves to even. A side that cannot be computed (no picture, more than 16 bits) stays 0.
QString ComputeResizeSize(std::int16_t width0, std::int16_t height0, std::int16_t width, std::int16_t height,
                          bool byPercent, std::int16_t percent);

inline constexpr std::int16_t kDeriveSide = -1; // the side that follows from the other

struct PictureSize {
    std::int16_t width;
    std::int16_t height;
};

// The two numbers of "W,H". Throws NumberError for any other text.
PictureSize SplitSize(const QString& text);

} // namespace pictorel
