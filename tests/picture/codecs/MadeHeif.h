// HEIF files made by libheif's encoders, so that what must come out is known.
#pragma once

#include "picture/codecs/Cicp.h"

#include <array>
#include <optional>

namespace pictorel::codecs::testing {

// A picture whose planes hold nothing but slopes; coarse planes have the mean of what they stand for.
struct HeifRecipe {
    bool isAv1 = false;
    int width = 64;
    int height = 48;
    int bits = 8;
    int chroma = 420; // 444, 422, 420; 400 is greys
    bool withAlpha = false;
    bool isPremultiplied = false;
    std::optional<Cicp> space{}; // told in a box; the matrix is that of the planes, BT.601 where none is told
    ByteBuffer icc{};
    ByteBuffer exif{}; // a TIFF structure
    ByteBuffer xmp{};
    int orientation = 1; // told by a turn and a mirror
};

ByteBuffer MakeHeif(const HeifRecipe& recipe);

// Red, green, blue and alpha 0..1 of the picture before it is turned.
std::array<double, 4> HeifColour(const HeifRecipe& recipe, int x, int y);

} // namespace pictorel::codecs::testing
