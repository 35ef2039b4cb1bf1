// The single entry for every change of pixels, as the rooms beside the operation table see it.
#pragma once

#include "editor/Image_Mods.h"

namespace pictorel {

inline constexpr std::int32_t kResizeOperation = 35; // value1 x value2 pixels

class ImageOperations {
  public:
    virtual ~ImageOperations() = default;

    // Applies operation `code` (0..35) to the last committed picture, or to the reduced copy in preview mode,
    // and shows the result. Never throws; a failing step is skipped.
    virtual void ApplyImageOperation(PictureSlot slot, std::int32_t code, bool previewMode,
                                     std::int32_t value1, std::int32_t value2, std::int32_t value3) = 0;
};

} // namespace pictorel
