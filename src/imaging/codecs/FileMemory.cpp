// Memory for files in the making, see FileMemory.h.
#include "imaging/codecs/FileMemory.h"

#include <sys/mman.h>

#include <cstdint>

namespace pictorel::codecs {

void ReserveFile(ByteBuffer& file, std::size_t bytes) {
    constexpr std::size_t kLargePage = std::size_t{2} << 20;
    constexpr std::size_t kWorthIt = 4 * kLargePage;
    file.reserve(bytes);
    if (bytes < kWorthIt) {
        return;
    }
    const auto begin = reinterpret_cast<std::uintptr_t>(file.data()) + file.size();
    const std::uintptr_t first = (begin + kLargePage - 1) / kLargePage * kLargePage;
    const std::uintptr_t end = (begin + bytes - file.size()) / kLargePage * kLargePage;
    if (first < end) { // only advice: it makes no difference where it is not taken
        madvise(reinterpret_cast<void*>(first), end - first, MADV_HUGEPAGE);
    }
}

} // namespace pictorel::codecs
