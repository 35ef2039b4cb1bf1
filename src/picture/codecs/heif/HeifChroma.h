// How finely the pictures in a HEIF file hold their colour differences, which libheif does not tell: it has
// to be asked for them in one fineness, and works over what is of another.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

enum class HeifChroma {
    None,   // greys
    Coarse, // 4:2:0
    Half,   // 4:2:2
    Full,   // 4:4:4
};

// The finest among the coded pictures of the file: its tiles, its transparency, its thumbnail. Full where the
// boxes cannot be followed.
HeifChroma FinestChroma(ByteView file) noexcept;

} // namespace pictorel::codecs
