// Memory for files in the making, see FileMemory.h.
#include "picture/codecs/FileMemory.h"

#include <sys/mman.h>

#include <cstdint>

namespace pictorel::codecs {

void ReserveFile(ByteBuffer& file, std::size_t bytes) {
    constexpr std::size_t kLargePage = std::size_t{2} << 20;
    constexpr std::size_t kWorthIt = 4 * kLargePage;
    file.reserve(bytes);
    if (bytes < kWorthIt + file.size()) {
        return;
    }
    std::uint8_t* const begin = file.data() + file.size();
    const std::size_t beforePage =
        (kLargePage - reinterpret_cast<std::uintptr_t>(begin) % kLargePage) % kLargePage;
    const std::size_t room = bytes - file.size();
    if (beforePage < room) { // only advice: it makes no difference where it is not taken
        madvise(begin + beforePage, (room - beforePage) / kLargePage * kLargePage, MADV_HUGEPAGE);
    }
}

} // namespace pictorel::codecs
