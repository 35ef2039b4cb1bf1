// When results go past the cache.
#pragma once

#include "picture/PixelArray.h"

#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// A result larger than this is out of the cache before anybody reads it: writing it past the cache saves
// reading its lines first. A smaller one (a preview's copy) is read right away and must stay.
inline constexpr std::size_t kStreamedBytes = std::size_t{8} << 20;

inline bool IsStreamed(std::size_t resultBytes) noexcept {
    return resultBytes > kStreamedBytes;
}

inline bool IsStreamed(const PixelArray& result) noexcept {
    return IsStreamed(result.RowBytes() * static_cast<std::size_t>(result.Height()));
}

// Asks for the cache line at `pixels`, which is read soon, into the second-level cache. Processors fetch
// ahead by themselves only within a page of memory, and not well while results go past the cache: a kernel
// asks for a row some rows ahead as it writes one. (Always inlined: GCC drops the call of a function that
// does nothing else.)
[[gnu::always_inline]] inline void FetchAhead(const std::uint8_t* pixels) noexcept {
    __builtin_prefetch(pixels, 0, 2);
}

// So many rows before they are read is early enough.
inline constexpr int kRowsAhead = 4;

} // namespace pictorel::engine
