// A picture brought down to a palette.
#pragma once

#include "picture/codecs/gif/PaletteChoice.h"

#include <cstdint>
#include <vector>

namespace pictorel::codecs {

struct IndexedPicture {
    std::vector<Bgr> palette;
    int transparentIndex = -1;         // -1: every pixel is opaque
    std::vector<std::uint8_t> indices; // rows of the picture's width, one after another
};

// At most 256 colours, the transparent one included. Exact where the picture has no more; otherwise the best
// ones, the rest made up by error diffusion.
IndexedPicture MakeIndexed(const PixelArray& picture);

} // namespace pictorel::codecs
