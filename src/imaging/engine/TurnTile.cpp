// Rows and columns exchanged pixel by pixel, see TurnTile.h.
#include "imaging/engine/TurnTile.h"

#include "imaging/engine/WholePixel.h"

namespace pictorel::engine::scalar {

void Transpose(const TurnTile& tile) {
    constexpr std::ptrdiff_t kPixelBytes = 4;
    for (int y = 0; y < tile.height; ++y) {
        for (int x = 0; x < tile.width; ++x) {
            StorePixel(tile.to + y * tile.toStep + x * kPixelBytes,
                       LoadPixel(tile.from + x * tile.fromStep + y * kPixelBytes));
        }
    }
}

} // namespace pictorel::engine::scalar
