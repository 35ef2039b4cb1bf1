// Zoom and scrolling: the controls follow the view and the view follows the controls.
#pragma once

#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/Label.h"
#include "controls/PushButton.h"
#include "controls/ScrollBar.h"
#include "controls/Slider.h"
#include "editor/Image_Mods.h"

#include <functional>

namespace pictorel {

// All one-element arrays, addressed by the picture's slot.
struct ZoomScrollControls {
    ControlArray<PushButton> Cmd_ZoomIn;
    ControlArray<PushButton> Cmd_ZoomOut;
    ControlArray<PushButton> Cmd_ZoomFit;
    ControlArray<PushButton> Cmd_ActualSize;
    ControlArray<Slider> Slider_ImageZoom; // whole percent
    ControlArray<Label> lbl_ZoomPercent;
    ControlArray<ScrollBar>
        ScrollBar_ImageX; // offset of the view's centre from the picture's middle, picture pixels
    ControlArray<ScrollBar> ScrollBar_ImageY;
};

// What the reduced copy has to be told.
struct PreviewCopy {
    std::function<void()> Rebuild;
    std::function<void(bool outdated)> SetOutdated;
};

class ZoomScroll {
  public:
    ZoomScroll(Image_Mods& document, ZoomScrollControls controls, PreviewCopy preview);

    void ScrollImageView(PictureSlot slot); // controls to view
    void UpdateZoomView(PictureSlot slot);  // view to controls

    void Cmd_ZoomIn_Click(int index);
    void Cmd_ZoomOut_Click(int index);
    void Cmd_ZoomFit_Click(int index);
    void Cmd_ActualSize_Click(int index);
    void Slider_ImageZoom_Change(int index);
    void Slider_ImageZoom_MouseUp(int index);
    void ScrollBar_Change(int index);

    // Sets the scroll bars back to the picture's middle; the view follows with the next ScrollImageView.
    void CentreAxes(bool across, bool down);

    // The person zoomed or moved the picture in the view itself.
    void ImageView_Changed(int index);

    // True only while UpdateZoomView writes the controls.
    bool ZoomControlsSyncing = false;

  private:
    Image_Mods& document_;
    ZoomScrollControls controls_;
    PreviewCopy preview_;
    Events events_;
};

} // namespace pictorel
