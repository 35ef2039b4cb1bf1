// Maps of 256 entries, see ByteMap.h.
#include "picture/engine/kernels/point/ByteMap.h"

#include "picture/engine/kernels/base/RowLoop.h"
#include "picture/engine/kernels/point/MapKernels.h"

namespace pictorel::engine {

ByteMap IdentityMap() {
    return MakeByteMap([](int c) { return c; });
}

PixelArray ApplyMap(const PixelArray& source, const ByteMap& map) {
    return ApplyMaps(source, {map, map, map});
}

PixelArray ApplyMaps(const PixelArray& source, const ColourMaps& maps) {
    const ByteMap identity = IdentityMap();
    if (maps.blue == identity && maps.green == identity && maps.red == identity) {
        return source;
    }
    const SectionedMaps sectioned(maps);
    return MapRows(source, [&](const std::uint8_t* in, std::uint8_t* out, int width) {
        MapKernels::Best().MapRow(in, out, width, sectioned);
    });
}

} // namespace pictorel::engine
