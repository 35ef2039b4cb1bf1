// Looking up every component of a row in a map as plain loops, see MapKernels.h.
#include "picture/engine/kernels/base/Luma.h"
#include "picture/engine/kernels/base/Rounding.h"
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/point/MapKernels.h"

namespace pictorel::engine {
namespace {

void MapRow(const std::uint8_t* in, std::uint8_t* out, int width, const SectionedMaps& maps) {
    for (int x = 0; x < width; ++x, in += kComponents, out += kComponents) { // one load and store a pixel
        const std::uint32_t pixel = LoadPixel(in);
        const std::uint32_t blue = maps.plain.blue[pixel & 0xFF];
        const std::uint32_t green = maps.plain.green[pixel >> 8 & 0xFF];
        const std::uint32_t red = maps.plain.red[pixel >> 16 & 0xFF];
        StorePixel(out, blue | green << 8 | red << 16 | (pixel & kOpaque));
    }
}

void AddByLumaRow(const std::uint8_t* in, std::uint8_t* out, int width, const SectionedChange& change) {
    for (int x = 0; x < width; ++x, in += kComponents, out += kComponents) {
        const int added = change.plain[static_cast<std::size_t>(Luma(in))];
        out[0] = ClampToByte(in[0] + added);
        out[1] = ClampToByte(in[1] + added);
        out[2] = ClampToByte(in[2] + added);
        out[3] = in[3];
    }
}

constexpr MapKernels kPlain{
    .MapRow = MapRow,
    .AddByLumaRow = AddByLumaRow,
};

} // namespace

const MapKernels& MapKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
