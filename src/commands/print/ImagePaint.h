// Printing one picture.
#pragma once

#include "picture/PixelArray.h"

#include <cstdint>

namespace pictorel {

// The number in each comment is the member's number in the interface catalogue that the Print command is
// written against.
class ImagePaint {
  public:
    virtual ~ImagePaint() = default;

    virtual void PreparePage(std::int32_t width, std::int32_t height) = 0; // 1; size of the picture, pixels
    virtual void SetPageFit(std::int32_t mode) = 0;  // 25; 11: centred, proportions kept
    virtual void SetPageUnit(std::int32_t unit) = 0; // 23; 0: pixels
    virtual void DrawPicture(const PixelArray& picture, std::int32_t left, std::int32_t top,
                             std::int32_t right,
                             std::int32_t bottom) = 0;          // 14; right and bottom inclusive
    virtual void FinishPage() = 0;                              // 2
    virtual bool Print(bool showDialog, bool showProgress) = 0; // 100; false when printing failed
};

} // namespace pictorel
