// The line that a motion blur averages along, as the picture and as the kernels count it.
#pragma once

#include <cstdint>
#include <optional>

namespace pictorel::engine {

// Motion components: 16-bit, in 1/64 of a level, colour premultiplied where the picture has alpha. The sum of
// two still fits into 16 bits.
using MotionComponent = std::int16_t;
inline constexpr int kMotionBits = 6;
inline constexpr int kMotionUnit = 1 << kMotionBits;

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

// A line in 16-bit arithmetic: the mean is the sum of the whole rows, shifted left by `shift` bits, times
// `perLength`, and the sum of the two tips times `tipShare`, both in 1/kFixedUnit, which gives 1/kMeanUnit of
// a level.
struct FixedLine {
    static constexpr int kMeanBits = 5;
    static constexpr int kMeanUnit = 1 << kMeanBits;

    // None for a line whose sum does not fit into 16 bits.
    static std::optional<FixedLine> Of(const Line& line);

    int whole;
    int shift;
    std::int16_t perLength;
    std::int16_t tipShare;
};

} // namespace pictorel::engine
