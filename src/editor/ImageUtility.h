// The size of a picture in an array.
#pragma once

#include "picture/PixelArray.h"

#include <cstdint>

namespace pictorel {

class ImageUtility {
  public:
    virtual ~ImageUtility() = default;

    virtual std::int32_t Width(const PixelArray& picture) const = 0;  // 10; pixels
    virtual std::int32_t Height(const PixelArray& picture) const = 0; // 11; pixels
};

} // namespace pictorel
