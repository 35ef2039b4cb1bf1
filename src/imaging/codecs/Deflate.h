// Deflating the filtered rows of a picture, as hard as is worth it.
#pragma once

#include "imaging/codecs/Codec.h"

namespace pictorel::codecs {

enum class DeflatePart {
    Whole,     // a zlib stream of its own
    Piece,     // raw deflate data that ends on a byte boundary, so that another piece can follow
    LastPiece, // the same, and ends the stream
};

// Filtered photographs hold no repeated strings: runs and Huffman codes alone make them as small, in a fifth
// of the time. Drawings and screens gain much by string matching. A sample of the data tells which they are.
// Throws ImagingError(OutOfMemory).
ByteBuffer Deflate(ByteView data, DeflatePart part);

} // namespace pictorel::codecs
