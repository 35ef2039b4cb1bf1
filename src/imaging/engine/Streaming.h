// When results go past the cache.
#pragma once

#include "imaging/PixelArray.h"

#include <cstddef>

namespace pictorel::engine {

// A result larger than this is out of the cache before anybody reads it: writing it past the cache saves
// reading its lines first. A smaller one (a preview's copy) is read right away and must stay.
inline constexpr std::size_t kStreamedBytes = std::size_t{8} << 20;

inline bool IsStreamed(const PixelArray& result) noexcept {
    return result.RowBytes() * static_cast<std::size_t>(result.Height()) > kStreamedBytes;
}

} // namespace pictorel::engine
