// Memory for files in the making.
#pragma once

#include "picture/codecs/Codec.h"

#include <cstddef>

namespace pictorel::codecs {

// Reserves so much, in large pages where the system has them: fresh memory in small ones costs more than
// filling it.
void ReserveFile(ByteBuffer& file, std::size_t bytes);

} // namespace pictorel::codecs
