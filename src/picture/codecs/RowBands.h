// Puts together the rows of a file whose rows are packed each for itself.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstddef>
#include <functional>

namespace pictorel::codecs {

// Writes one row from `out` on, at most the `longestRow` bytes promised to AppendRows, and returns its end.
// Called from several threads.
using PackRow = std::function<std::uint8_t*(int row, std::uint8_t* out)>;

// Appends rows 0 <= row < rows to the file in their order; they are packed in bands on all cores.
void AppendRows(ByteBuffer& file, int rows, std::size_t longestRow, const PackRow& packRow);

} // namespace pictorel::codecs
