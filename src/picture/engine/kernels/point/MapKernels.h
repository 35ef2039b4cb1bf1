// Looking up every component of a row in a map.
#pragma once

#include "picture/engine/kernels/point/SectionedMap.h"

#include <cstdint>

namespace pictorel::engine {

// `in` and `out` are rows of `width` pixels of a PixelArray: read and written in blocks of up to 64 bytes.
// Alpha is copied.
struct MapKernels {
    // Each component by the map of its colour.
    void (*MapRow)(const std::uint8_t* in, std::uint8_t* out, int width, const SectionedMaps& maps);

    // c + change[Y] with Y the rounded luma, clamped.
    void (*AddByLumaRow)(const std::uint8_t* in, std::uint8_t* out, int width, const SectionedChange& change);

    static const MapKernels& Plain();
    static const MapKernels& Best();
};

} // namespace pictorel::engine
