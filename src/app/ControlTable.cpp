// The inventory of the main window, see ControlTable.h.
#include "app/ControlTable.h"

#include "app/SliderPages.h"

#include <array>

namespace pictorel {
namespace {

using enum ControlKind;

constexpr float Px(int pixels) {
    return static_cast<float>(pixels) * kTwipsPerPixel;
}

constexpr TwipsRect InPixels(int left, int top, int width, int height) {
    return {Px(left), Px(top), Px(width), Px(height)};
}

constexpr std::array kFrame{
    ControlRow{"Resizer_Main", 0, ContainerPanel, "", {0, 0, 15570, 12570}},
    ControlRow{"Cmd_Panel", 0, PushButton, "Resizer_Main", {120, 60, 855, 855}, "Open"},
    ControlRow{"Cmd_Panel", 1, PushButton, "Resizer_Main", {960, 60, 855, 855}, "Save"},
    ControlRow{"Cmd_Panel", 2, PushButton, "Resizer_Main", {2040, 60, 855, 855}, "Undo"},
    ControlRow{"Cmd_Panel", 3, PushButton, "Resizer_Main", {2880, 60, 855, 855}, "Redo"},
    ControlRow{"Cmd_Panel", 4, PushButton, "Resizer_Main", {3960, 60, 855, 855}, "Print"},
    ControlRow{"Cmd_Panel", 5, PushButton, "Resizer_Main", {4800, 60, 855, 855}, "Scan"},
    ControlRow{"Cmd_Panel", 6, PushButton, "Resizer_Main", {5880, 60, 855, 855}, "Tools"},
    ControlRow{"Cmd_Panel", 7, PushButton, "Resizer_Main", {6720, 60, 855, 855}, "About"},
    ControlRow{"Line13", 0, Line, "Resizer_Main", {1920, 120, 15, 720}},
    ControlRow{"Line14", 0, Line, "Resizer_Main", {3840, 120, 15, 720}},
    ControlRow{"Line15", 0, Line, "Resizer_Main", {5760, 120, 15, 720}},
    ControlRow{"Cmd_Recommend", 0, PushButton, "Resizer_Main", {14870, 210, 420, 420}, "", "Twitter"},
    ControlRow{"Cmd_Recommend", 1, PushButton, "Resizer_Main", {14440, 210, 420, 420}, "", "Facebook"},
    ControlRow{"ImageView", 0, ImageView, "Resizer_Main", {120, 960, 9600, 10170}},
    ControlRow{"ScrollBar_ImageX", 0, HorizontalScrollBar, "Resizer_Main", {120, 11120, 9600, 255}},
    ControlRow{"ScrollBar_ImageY", 0, VerticalScrollBar, "Resizer_Main", {9700, 960, 255, 10190}},
    ControlRow{"ProgressBar", 0, ProgressBar, "Resizer_Main", {175, 10710, 9500, 375}, "", "", false},
    ControlRow{"TabControl_Effects", 0, TabControl, "Resizer_Main", {10215, 960, 5055, 8255}},
    ControlRow{"Resizer_Adjustments", 0, ContainerPanel, "TabControl_Effects", {60, 540, 4935, 6475}},
    ControlRow{"Resizer_Filters", 0, ContainerPanel, "TabControl_Effects", {60, 540, 4935, 6475}},
    ControlRow{"Resizer_Effects", 0, ContainerPanel, "TabControl_Effects", {60, 540, 4935, 6475}},
    ControlRow{"Resizer_Resize", 0, ContainerPanel, "TabControl_Effects", {60, 540, 4935, 6405}},
    ControlRow{"HistoryList", 0, ReportList, "Resizer_Main", {10215, 9505, 5055, 2415}},
    ControlRow{"GroupBox_Canves1", 0, GroupBox, "Resizer_Main", {240, 11545, 10015, 375}},
    ControlRow{"lbl_ImageInfo", 0, Label, "GroupBox_Canves1", {0, 0, 2600, 375}},
    ControlRow{"GroupBox_Canves2", 0, GroupBox, "GroupBox_Canves1", {2620, -120, 7095, 495}},
    ControlRow{"Cmd_RotateRight", 0, PushButton, "GroupBox_Canves2", {0, 120, 375, 375}},
    ControlRow{"Cmd_RotateLeft", 0, PushButton, "GroupBox_Canves2", {360, 120, 375, 375}},
    ControlRow{"Line5", 0, Line, "GroupBox_Canves2", {840, 165, 15, 285}},
    ControlRow{"Cmd_FlipV", 0, PushButton, "GroupBox_Canves2", {960, 120, 375, 375}},
    ControlRow{"Cmd_FlipH", 0, PushButton, "GroupBox_Canves2", {1320, 120, 375, 375}},
    ControlRow{"Line7", 0, Line, "GroupBox_Canves2", {1800, 165, 15, 285}},
    ControlRow{"Cmd_ActualSize", 0, PushButton, "GroupBox_Canves2", {1920, 120, 375, 375}},
    ControlRow{"Cmd_ZoomFit", 0, PushButton, "GroupBox_Canves2", {2280, 120, 375, 375}},
    ControlRow{"Line12", 0, Line, "GroupBox_Canves2", {2820, 165, 15, 285}},
    ControlRow{"Cmd_ZoomOut", 0, PushButton, "GroupBox_Canves2", {3000, 120, 375, 375}},
    ControlRow{"Slider_ImageZoom", 0, Slider, "GroupBox_Canves2", {3480, 120, 2415, 375}},
    ControlRow{"Cmd_ZoomIn", 0, PushButton, "GroupBox_Canves2", {6000, 120, 375, 375}},
    ControlRow{"lbl_ZoomPercent", 0, Label, "GroupBox_Canves2", {6450, 120, 645, 375}, "100%"},
};

constexpr std::array kHidden{
    ControlRow{"WebBrowser1", 0, WebBrowser, "Resizer_Main", {0, 0, 15, 15}, "", "", false},
};

constexpr std::array kResizePage{
    ControlRow{"GroupBox_Resize", 0, GroupBox, "Resizer_Resize", InPixels(12, 8, 304, 88),
               "Size setting summary"},
    ControlRow{"lbl_Resize", 0, Label, "GroupBox_Resize", InPixels(124, 28, 172, 24), "0 x 0 pixels"},
    ControlRow{"lbl_Resize", 1, Label, "GroupBox_Resize", InPixels(124, 54, 172, 24), "0 x 0 pixels"},
    ControlRow{"RadioButton_Resize", 0, RadioButton, "Resizer_Resize", InPixels(12, 108, 304, 22),
               "Original Size"},
    ControlRow{"RadioButton_Resize", 1, RadioButton, "Resizer_Resize", InPixels(12, 134, 304, 22),
               "Predefined"},
    ControlRow{"Combo_ResizePredefined", 0, ComboBox, "Resizer_Resize", InPixels(32, 158, 284, 26)},
    ControlRow{"RadioButton_Resize", 2, RadioButton, "Resizer_Resize", InPixels(12, 192, 304, 22), "Custom"},
    ControlRow{"Txt_ImageWidth", 0, EditField, "Resizer_Resize", InPixels(32, 240, 66, 26)},
    ControlRow{"UpDown_ImageWidth", 0, UpDown, "Resizer_Resize", InPixels(99, 240, 18, 26)},
    ControlRow{"Txt_ImageHeight", 0, EditField, "Resizer_Resize", InPixels(130, 240, 66, 26)},
    ControlRow{"UpDown_ImageHeight", 0, UpDown, "Resizer_Resize", InPixels(197, 240, 18, 26)},
    ControlRow{"RadioButton_Resize", 3, RadioButton, "Resizer_Resize", InPixels(12, 276, 304, 22),
               "Percentage of original size"},
    ControlRow{"Txt_ResizePercent", 0, EditField, "Resizer_Resize", InPixels(32, 302, 66, 26), "100"},
    ControlRow{"UpDown_ResizePercent", 0, UpDown, "Resizer_Resize", InPixels(99, 302, 18, 26)},
};

} // namespace

std::vector<ControlRow> MainWindowControls() {
    std::vector<ControlRow> rows(kFrame.begin(), kFrame.end());
    rows.insert(rows.end(), kHidden.begin(), kHidden.end());
    rows.insert(rows.end(), kResizePage.begin(), kResizePage.end());
    AppendSliderPages(rows);
    return rows;
}

} // namespace pictorel
