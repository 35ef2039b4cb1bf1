// Which controls depend on an open picture, see PictureDependent.h.
#include "app/PictureDependent.h"

namespace pictorel {

std::vector<Control*> PictureDependentControls(const MainControls& c) {
    std::vector<Control*> dependent;
    for (int i = kSaveButton; i <= kAboutButton; ++i) {
        dependent.push_back(&c.Cmd_Panel(i));
    }
    const auto append = [&dependent](const auto&... arrays) {
        (dependent.insert(dependent.end(), arrays.begin(), arrays.end()), ...);
    };
    append(c.Cmd_RotateLeft, c.Cmd_RotateRight, c.Cmd_FlipV, c.Cmd_FlipH, c.Cmd_ActualSize, c.Cmd_ZoomFit,
           c.Cmd_ZoomOut, c.Cmd_ZoomIn, c.Slider_ImageZoom, c.lbl_ZoomPercent, c.lbl_ImageInfo);
    dependent.push_back(&c.HistoryList);
    append(c.Slider_Tab, c.lbl_SliderName, c.lbl_SliderTab, c.lbl_SliderNameRightSide, c.Cmd_Tab, c.Cmd_Reset,
           c.Cmd_Icon, c.RadioButton_Resize);
    dependent.push_back(&c.GroupBox_Resize);
    append(c.lbl_Resize);
    return dependent;
}

} // namespace pictorel
