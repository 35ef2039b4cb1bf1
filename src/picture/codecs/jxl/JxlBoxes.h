// What stands beside the codestream in the boxes of a JPEG XL file.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

struct JxlBoxes {
    ByteBuffer exif; // as the box has it: an offset first
    ByteBuffer xmp;
};

// The first box of either kind, unpacked where it is compressed. Damage and boxes that are too large to be
// honest leave it empty.
JxlBoxes ReadJxlBoxes(ByteView file);

} // namespace pictorel::codecs
