// The EXIF block of a picture: its orientation, its resolution, and bringing it up to date with the pixels.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// The EXIF orientation 1..8 of a TIFF-structured block ("II*\0" or "MM\0*" first); 1 where it is missing or
// damaged.
int ExifOrientation(ByteView exif) noexcept;

// A copy of the block with its orientation set to 1 and without its thumbnail, which an edit would leave
// showing another picture; an empty buffer where the block is damaged beyond use.
ByteBuffer WithUprightOrientation(ByteView exif);

// A copy of the block in which the sizes of the picture are these, as far as it tells any: an edit may have
// changed them since the block was read.
ByteBuffer WithPictureSize(ByteView exif, int width, int height);

// Pixels per inch from the block's XResolution, YResolution and ResolutionUnit; 0 where missing.
struct Resolution {
    double dotsPerInchX = 0;
    double dotsPerInchY = 0;
};
Resolution ExifResolution(ByteView exif) noexcept;

// The picture turned and mirrored as the orientation 1..8 asks, so that it is upright; the two resolutions in
// its details change places where it is turned. 1 (or a number that is no orientation) returns it unchanged.
PixelArray ApplyOrientation(PixelArray picture, int orientation);

} // namespace pictorel::codecs
