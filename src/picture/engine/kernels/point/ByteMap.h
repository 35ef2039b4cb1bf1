// Maps of 256 entries: what a component becomes, by its value.
#pragma once

#include "picture/PixelArray.h"
#include "picture/engine/kernels/base/Rounding.h"

#include <array>
#include <cstdint>

namespace pictorel::engine {

using ByteMap = std::array<std::uint8_t, 256>;

// One map per colour component; alpha is left alone.
struct ColourMaps {
    ByteMap blue;
    ByteMap green;
    ByteMap red;
};

// The map c -> formula(c), rounded to nearest and clamped.
template <class Formula>
ByteMap MakeByteMap(const Formula& formula) {
    ByteMap map;
    for (int c = 0; c < 256; ++c) {
        map[static_cast<std::size_t>(c)] = RoundToByte(static_cast<double>(formula(c)));
    }
    return map;
}

ByteMap IdentityMap();

// Gives back the source itself where the maps change nothing.
PixelArray ApplyMap(const PixelArray& source, const ByteMap& map);
PixelArray ApplyMaps(const PixelArray& source, const ColourMaps& maps);

} // namespace pictorel::engine
