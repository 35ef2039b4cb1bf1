// The sizes a picture may have, checked right after a header is read and before memory is taken.
#pragma once

#include <cstdint>

namespace pictorel {

inline constexpr int kMaximumSide = 32767;      // pixels; sizes are 16-bit signed numbers above
#ifdef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION // the fuzzers' own name: they want many small pictures
inline constexpr std::int64_t kMaximumPixels = std::int64_t{1} << 18;
#else
inline constexpr std::int64_t kMaximumPixels = std::int64_t{1} << 30; // one gigapixel
#endif

// Throws ImagingError(TooLarge) naming the size where a side is above kMaximumSide or the area above
// kMaximumPixels, and ImagingError(UnsupportedFormat) where a side is below 1.
void CheckPictureSize(std::int64_t width, std::int64_t height);

} // namespace pictorel
