// The main window's layout: where everything goes for a given outer size.
#pragma once

#include "controls/ContainerPanel.h"
#include "controls/ControlArray.h"
#include "controls/GroupBox.h"
#include "controls/ProgressBar.h"
#include "controls/PushButton.h"
#include "controls/ReportList.h"
#include "controls/ScrollBar.h"
#include "controls/TabControl.h"
#include "editor/Editor.h"
#include "view/PictureViewControl.h"
#include "view/ZoomScroll.h"

#include <QSize>

#include <functional>

namespace pictorel {

struct LayoutControls {
    ContainerPanel& Resizer_Main;
    TabControl& TabControl_Effects;
    ReportList& HistoryList;
    ContainerPanel& Resizer_Adjustments;
    ContainerPanel& Resizer_Filters;
    ContainerPanel& Resizer_Effects;
    ContainerPanel& Resizer_Resize;
    ControlArray<ScrollBar> ScrollBar_ImageX;
    ControlArray<ScrollBar> ScrollBar_ImageY;
    ControlArray<PictureViewControl> ImageView;
    ProgressBar& ProgressBarControl;
    GroupBox& GroupBox_Canves1;
    GroupBox& GroupBox_Canves2;
    Control& lbl_ImageInfo;
    ControlArray<PushButton> Cmd_Recommend;
};

class Layout {
  public:
    Layout(const Image_Mods& document, LayoutControls controls, ZoomScroll& zoom);

    // Places everything for the window's outer size (frame and title bar included) in pixels and re-fits the
    // picture. A step whose control refuses its value is skipped and leaves the control as it was.
    void Form_Resize(QSize outerSize);

    // Whether the open picture is not smaller than the view, by the sum of width and height.
    bool ImageExceedsView(int viewIndex) const;

    // Actual size for a picture smaller than the view, best fit for any other.
    void RefitPicture();

  private:
    void Place(float W, float H);

    const Image_Mods& document_;
    LayoutControls controls_;
    ZoomScroll& zoom_;
};

} // namespace pictorel
