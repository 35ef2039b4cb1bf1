// Runs one operation on the committed picture or on the preview copy and shows the result.
#pragma once

#include "controls/ProgressBar.h"
#include "editor/ImageOperations.h"
#include "editor/Image_Mods.h"
#include "editor/OperationTable.h"

#include <functional>

namespace pictorel {

class OperationDispatcher : public ImageOperations {
  public:
    // Gives the view of the preview window, which is made when first asked for.
    using PreviewView = std::function<ImageView&()>;

    OperationDispatcher(Image_Mods& document, ProgressBar& progressBar, PreviewView previewView);

    // Starts from PreviewPixels (previewMode) or ImagePixels, so calls never pile up; leaves both as they
    // are. After a preview the working picture is the committed one again. A step that fails is skipped: the
    // view is then refreshed from the unchanged picture. A code outside 0..35 changes no pixels. Sets the
    // changed mark in either mode.
    void ApplyImageOperation(PictureSlot slot, std::int32_t code, bool previewMode, std::int32_t value1,
                             std::int32_t value2, std::int32_t value3) override;

  private:
    static void ShowResult(ImageTransform& transform, ImageView& view);

    Image_Mods& document_;
    ProgressBar& progressBar_;
    PreviewView previewView_;
};

} // namespace pictorel
