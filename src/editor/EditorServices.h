// What the document's commands need of the rest of the window, as one narrow interface.
#pragma once

#include "editor/Image_Mods.h"

namespace pictorel {

class EditorServices {
  public:
    virtual ~EditorServices() = default;

    virtual void SetEditingEnabled(bool enabled) = 0;
    virtual void ResetSliderGroup(int group) = 0;          // 1 Adjustments, 2 Filters, 3 Effects
    virtual void ResetResizePanel() = 0;                   // mode "Original Size"
    virtual void CheckOriginalSize() = 0;                  // marks that mode's radio button
    virtual void UpdatePreviewImage(PictureSlot slot) = 0; // rebuilds the reduced copy
    virtual void UpdateZoomView(PictureSlot slot) = 0;     // brings the zoom controls into line with the view
    // While off, no control of the window takes input, whatever its own state; each keeps that.
    virtual void SetCommandsEnabled(bool enabled) = 0;
    virtual void RepaintWindow() = 0;
    virtual void EndAttention() = 0; // stops the blink of Open and closes the getting-started tag
    virtual void ShowAbout() = 0;
    virtual void ShowTools() = 0;
};

} // namespace pictorel
