// Writes a picture as a lossless TIFF file, its strips compressed on all cores.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// RGB, or RGBA with unassociated alpha where something is transparent; Deflate with the horizontal predictor.
// An EXIF block stands unchanged at the head of the file, so that its own offsets (maker notes among them)
// keep their meaning. Throws ImagingError(TooLarge) where the file would pass the four gigabytes of the
// format.
ByteBuffer EncodeTiff(const PixelArray& picture);

} // namespace pictorel::codecs
