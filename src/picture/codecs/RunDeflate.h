// Deflating at the speed of memory: Huffman codes and runs of one byte, but no search for repeated strings.
#pragma once

#include "picture/codecs/Codec.h"

namespace pictorel::codecs {

// Raw deflate data (RFC 1951) of the bytes, each run of one byte packed. The last block is marked as such
// where `isLast`; otherwise the data end on a byte boundary, so that others can follow.
ByteBuffer DeflateRuns(ByteView data, bool isLast);

} // namespace pictorel::codecs
