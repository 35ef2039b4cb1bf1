// The XMP packet of a picture: what people wrote about it, kept without what an edit makes untrue.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// A copy of the packet in which nothing is left about orientation, sizes, resolution and thumbnail of the
// picture: blanks stand in their place. Empty where the bytes are no UTF-8 packet, or one that is damaged or
// larger than kLargestXmp.
inline constexpr std::size_t kLargestXmp = std::size_t{1} << 20;
ByteBuffer WithoutPictureClaims(ByteView xmp);

} // namespace pictorel::codecs
