// Maps in the form in which vectors look them up.
#pragma once

#include "picture/engine/kernels/point/ByteMap.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace pictorel::engine {

// A map cut into sections of 16 values, each of which a byte shuffle looks up at once. A section holds what
// differs (exclusive or) from the one before: a value takes part in all sections up to its own, and all but
// its own cancel out. The two halves of the values begin anew.
struct SectionedMap {
    static constexpr std::size_t kSection = 16;
    static constexpr std::size_t kHalf = 128;

    explicit SectionedMap(const ByteMap& map);

    ByteMap plain;
    alignas(kSection) ByteMap differences;
};

// One map per colour component; alpha is left alone.
struct SectionedMaps {
    explicit SectionedMaps(const ColourMaps& maps)
        : plain(maps), blue(maps.blue), green(maps.green), red(maps.red) {}

    ColourMaps plain;
    SectionedMap blue;
    SectionedMap green;
    SectionedMap red;
};

// What to add to and to take off the components of a pixel by its luma, for changes of up to 255.
struct SectionedChange {
    explicit SectionedChange(const std::array<std::int32_t, 256>& change);

    std::array<std::int32_t, 256> plain;
    SectionedMap raising;
    SectionedMap lowering;
};

} // namespace pictorel::engine
