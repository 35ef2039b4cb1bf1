// Zoom and scrolling: the controls follow the view and the view follows the controls.
#pragma once

#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/Label.h"
#include "controls/PushButton.h"
#include "controls/ScrollBar.h"
#include "controls/Slider.h"
#include "editor/Editor.h"
#include "view/ImageView.h"

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

class ZoomScroll {
  public:
    ZoomScroll(Editor& editor, ImageView& view, ZoomScrollControls controls);

    // Scroll bars to view: the view's centre follows a bar that was moved. Along an axis whose bar was not,
    // it stays where it is, also further out than the bars reach.
    void ScrollImageView(PictureSlot slot);
    void UpdateZoomView(PictureSlot slot); // view to controls

    void Cmd_ZoomIn_Click(int index);
    void Cmd_ZoomOut_Click(int index);
    void Cmd_ZoomFit_Click(int index);
    void Cmd_ActualSize_Click(int index);
    void Slider_ImageZoom_Change(int index);
    void Slider_ImageZoom_MouseUp(int index);
    void ScrollBar_Change(int index);

    // Brings the picture's middle back to the middle of the view.
    void CentreAxes(bool across, bool down);

    // The person zoomed or moved the picture in the view itself.
    void ImageView_Changed(int index);

    // True only while UpdateZoomView writes the controls.
    bool ZoomControlsSyncing = false;

  private:
    int OffsetX(PictureSlot slot) const; // of the view's centre from the picture's middle, as the bars count
    int OffsetY(PictureSlot slot) const;
    void ClampZoom();
    void MarkPreviewOutdated() { editor_.Document.PreviewOutdated = true; }

    Editor& editor_;
    ImageView& view_;
    ZoomScrollControls controls_;
    Events events_;
};

} // namespace pictorel
