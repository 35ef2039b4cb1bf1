// Decodes the first picture of a JPEG XL codestream.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// The picture, upright, in sRGB, with its profile in the details.
PixelArray DecodeJxl(ByteView file);

} // namespace pictorel::codecs
