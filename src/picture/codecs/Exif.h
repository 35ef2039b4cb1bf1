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

// The TIFF structure within what other containers store as EXIF: it may stand behind the "Exif\0\0" that JPEG
// puts before it, and in the boxes of HEIF and JPEG XL behind four bytes that tell where it starts. Empty
// where there is none.
ByteView WithoutExifPrefix(ByteView stored) noexcept;
ByteView ExifOfBox(ByteView box) noexcept;

// Puts the metadata that a file had into the details of a picture that is, or is about to be made, upright:
// EXIF (a TIFF structure, which tells the resolution too) and XMP without what is no longer true.
void KeepMetadata(PixelArray& picture, ByteView exif, ByteView xmp);

// The picture turned and mirrored as the orientation 1..8 asks, so that it is upright; the two resolutions in
// its details change places where it is turned. 1 (or a number that is no orientation) returns it unchanged.
PixelArray ApplyOrientation(PixelArray picture, int orientation);

} // namespace pictorel::codecs
