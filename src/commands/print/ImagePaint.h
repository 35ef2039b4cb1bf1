// Printing one picture.
#pragma once

#include "picture/PixelArray.h"

#include <cstdint>

namespace pictorel {

class ImagePaint {
  public:
    virtual ~ImagePaint() = default;

    virtual void PreparePage(std::int32_t width, std::int32_t height) = 0; // size of the picture, pixels
    virtual void SetPageFit(std::int32_t mode) = 0;                        // 11: centred, proportions kept
    virtual void SetPageUnit(std::int32_t unit) = 0;                       // 0: pixels

    // Right and bottom are inside.
    virtual void DrawPicture(const PixelArray& picture, std::int32_t left, std::int32_t top,
                             std::int32_t right, std::int32_t bottom) = 0;
    virtual void FinishPage() = 0;
    virtual bool Print(bool showDialog, bool showProgress) = 0; // false when printing failed
};

} // namespace pictorel
