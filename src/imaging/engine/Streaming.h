// When results go past the cache.
#pragma once

#include "imaging/PixelArray.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// A result larger than this is out of the cache before anybody reads it: writing it past the cache saves
// reading its lines first. A smaller one (a preview's copy) is read right away and must stay.
inline constexpr std::size_t kStreamedBytes = std::size_t{8} << 20;

inline bool IsStreamed(const PixelArray& result) noexcept {
    return result.RowBytes() * static_cast<std::size_t>(result.Height()) > kStreamedBytes;
}

// Asks for the cache line at `pixels`, which is read next, into the second-level cache. Processors fetch
// ahead by themselves only within a page of memory, and not while results go past the cache: a kernel asks
// for the next row of the picture as it writes this one.
inline void FetchAhead(const std::uint8_t* pixels) noexcept {
    __builtin_prefetch(pixels, 0, 2);
}

} // namespace pictorel::engine
