// Pixels that change places one by one, see TurnKernels.h.
#include "picture/engine/kernels/base/Sizes.h"
#include "picture/engine/kernels/base/WholePixel.h"
#include "picture/engine/kernels/geometry/TurnKernels.h"

namespace pictorel::engine {
namespace {

void Transpose(const TurnTile& tile) {
    for (int y = 0; y < tile.height; ++y) {
        for (int x = 0; x < tile.width; ++x) {
            StorePixel(tile.to + y * tile.toStep + x * kPixelBytes,
                       LoadPixel(tile.from + x * tile.fromStep + y * kPixelBytes));
        }
    }
}

void MirrorRow(const std::uint8_t* in, std::uint8_t* out, int width) {
    for (std::ptrdiff_t x = 0; x < width; ++x) {
        StorePixel(out + x * kPixelBytes, LoadPixel(in + (width - 1 - x) * kPixelBytes));
    }
}

void EndStreaming() {}

constexpr TurnKernels kPlain{
    .Transpose = Transpose,
    .MirrorRow = MirrorRow,
    .EndStreaming = EndStreaming,
};

} // namespace

const TurnKernels& TurnKernels::Plain() {
    return kPlain;
}

} // namespace pictorel::engine
