// Pictures for the benchmarks.
#pragma once

#include "picture/PixelArray.h"

#include <string>

namespace pictorel::bench {

// A binary 8-bit PPM file. Throws std::runtime_error.
PixelArray ReadPpm(const std::string& path);

} // namespace pictorel::bench
