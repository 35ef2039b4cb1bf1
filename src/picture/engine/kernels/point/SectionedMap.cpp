// Maps in the form in which vectors look them up, see SectionedMap.h.
#include "picture/engine/kernels/point/SectionedMap.h"

namespace pictorel::engine {

SectionedMap::SectionedMap(const ByteMap& map) : plain(map) {
    for (std::size_t value = 0; value < map.size(); ++value) {
        const bool begins = value % kHalf < kSection;
        differences[value] = static_cast<std::uint8_t>(map[value] ^ (begins ? 0 : map[value - kSection]));
    }
}

SectionedChange::SectionedChange(const std::array<std::int32_t, 256>& change)
    : plain(change),
      raising(MakeByteMap([&](int value) { return change[static_cast<std::size_t>(value)]; })),
      lowering(MakeByteMap([&](int value) { return -change[static_cast<std::size_t>(value)]; })) {}

} // namespace pictorel::engine
