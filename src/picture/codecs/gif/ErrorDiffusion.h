// Gives each pixel of a picture one colour of a palette.
#pragma once

#include "picture/PixelArray.h"
#include "picture/codecs/gif/PaletteChoice.h"

#include <cstdint>
#include <vector>

namespace pictorel::codecs {

// The numbers of the colours, rows of the picture's width one after another; pixels less opaque than
// kOpaqueFrom get `transparentIndex`. What the palette lacks is made up by error diffusion (the three-weight
// filter of F. Sierra, 1990) in rows of alternating directions, on all cores; the result does not depend on
// their number.
std::vector<std::uint8_t> DiffuseErrors(const PixelArray& picture, const std::vector<Bgr>& palette,
                                        int transparentIndex);

} // namespace pictorel::codecs
