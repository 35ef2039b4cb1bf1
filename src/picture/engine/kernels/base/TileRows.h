// Loops over the components of rows and tiles. They are plain and have no result that depends on the kind of
// vectors: the compiler turns each into vectors for every processor, and the best fit is chosen at run time.
#pragma once

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// Wide components: 16-bit, in 1/64 of a level, colour premultiplied where the picture has alpha. The sum of
// two still fits into 16 bits.
using WideComponent = std::int16_t;
inline constexpr int kWideUnit = 64;

// 8-bit pixels with alpha to wide ones and back; the rows do not overlap.
void WidenRow(const std::uint8_t* in, int width, WideComponent* wide);
void NarrowRow(const WideComponent* wide, int width, std::uint8_t* out);

// The same of opaque pixels' colours alone: three wide components a pixel.
void WidenColours(const std::uint8_t* in, int width, WideComponent* wide);
void NarrowColours(const WideComponent* wide, int width, std::uint8_t* out);

// sums[i] += row[i].
void AddBytes(const std::uint8_t* row, std::size_t count, std::uint16_t* sums);

// Copies into a result, past the cache where it is told to, and fetches a row of the picture that is read
// soon (or null) meanwhile.
void CopyRow(const std::uint8_t* in, std::size_t size, bool streams, std::uint8_t* out,
             const std::uint8_t* ahead = nullptr);

// One step of a running mean over rows of `count` components: out = (whole + tip (before + entering))
// perLength, then `entering` is added to `whole` and `leaving` taken off.
struct MeanStep {
    const std::uint8_t* before;
    const std::uint8_t* leaving;
    const std::uint8_t* entering;
    float tip;
    float perLength;
};
void SlideRow(const MeanStep& step, int count, bool hasAlpha, std::int32_t* whole, std::uint8_t* out);
// whole += row, as SlideRow adds it.
void AddToMean(const std::uint8_t* row, int count, bool hasAlpha, std::int32_t* whole);

} // namespace pictorel::engine
