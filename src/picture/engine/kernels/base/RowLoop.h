// The loop of every operation that makes one row of the result from the same row of the source.
#pragma once

#include "picture/ForEachBand.h"
#include "picture/PixelArray.h"

#include <cstdint>

namespace pictorel::engine {

// Returns a picture like `source`, each row written by body(sourceRow, resultRow, width), on all cores.
template <class Body>
PixelArray MapRows(const PixelArray& source, const Body& body) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    const std::ptrdiff_t stride = result.Stride();
    ForEachBand(source.Height(), 2 * source.RowBytes(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            body(source.Row(y), rows + y * stride, source.Width());
        }
    });
    return result;
}

} // namespace pictorel::engine
