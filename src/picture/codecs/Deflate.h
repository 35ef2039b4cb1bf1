// Deflating the filtered rows of a picture, as hard as is worth it.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// Raw deflate data. They end the stream where `isLast`, otherwise they end on a byte boundary, so that
// another piece can follow. Filtered photographs hold no repeated strings: runs and Huffman codes alone make
// them as small, in a tenth of the time. Drawings and screens gain much by string matching. A sample of the
// data tells which they are. Throws ImagingError(OutOfMemory).
ByteBuffer Deflate(ByteView data, bool isLast);

} // namespace pictorel::codecs
