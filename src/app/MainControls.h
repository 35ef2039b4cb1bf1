// The main window's controls under their names: filled once, when the window is made.
#pragma once

#include "controls/ComboBox.h"
#include "controls/ContainerPanel.h"
#include "controls/ControlArray.h"
#include "controls/EditField.h"
#include "controls/GroupBox.h"
#include "controls/Label.h"
#include "controls/ProgressBar.h"
#include "controls/PushButton.h"
#include "controls/RadioButton.h"
#include "controls/ReportList.h"
#include "controls/ScrollBar.h"
#include "controls/Slider.h"
#include "controls/TabControl.h"
#include "controls/UpDown.h"
#include "controls/WebBrowser.h"
#include "view/PictureViewControl.h"

namespace pictorel {

// Elements of Cmd_Panel, the tool bar.
enum ToolBarButton {
    kOpenButton,
    kSaveButton,
    kUndoButton,
    kRedoButton,
    kPrintButton,
    kScanButton,
    kToolsButton,
    kAboutButton
};

// Elements of Cmd_Tab that the Resize page owns.
enum ResizeButton { kApplyButton = 3, kLockButton = 4 };

// A name or kind that the window does not have raises ControlError.
struct MainControls {
    ControlRegistry made;

    ContainerPanel& Resizer_Main = made.Single<ContainerPanel>("Resizer_Main");
    ControlArray<PushButton> Cmd_Panel = made.Array<PushButton>("Cmd_Panel");
    ControlArray<PushButton> Cmd_Recommend = made.Array<PushButton>("Cmd_Recommend");

    ControlArray<PictureViewControl> ImageView = made.Array<PictureViewControl>("ImageView");
    ControlArray<ScrollBar> ScrollBar_ImageX = made.Array<ScrollBar>("ScrollBar_ImageX");
    ControlArray<ScrollBar> ScrollBar_ImageY = made.Array<ScrollBar>("ScrollBar_ImageY");
    ProgressBar& ProgressBarControl = made.Single<ProgressBar>("ProgressBar");

    GroupBox& GroupBox_Canves1 = made.Single<GroupBox>("GroupBox_Canves1");
    ControlArray<Label> lbl_ImageInfo = made.Array<Label>("lbl_ImageInfo");
    GroupBox& GroupBox_Canves2 = made.Single<GroupBox>("GroupBox_Canves2");
    ControlArray<PushButton> Cmd_RotateRight = made.Array<PushButton>("Cmd_RotateRight");
    ControlArray<PushButton> Cmd_RotateLeft = made.Array<PushButton>("Cmd_RotateLeft");
    ControlArray<PushButton> Cmd_FlipV = made.Array<PushButton>("Cmd_FlipV");
    ControlArray<PushButton> Cmd_FlipH = made.Array<PushButton>("Cmd_FlipH");
    ControlArray<PushButton> Cmd_ActualSize = made.Array<PushButton>("Cmd_ActualSize");
    ControlArray<PushButton> Cmd_ZoomFit = made.Array<PushButton>("Cmd_ZoomFit");
    ControlArray<PushButton> Cmd_ZoomOut = made.Array<PushButton>("Cmd_ZoomOut");
    ControlArray<PushButton> Cmd_ZoomIn = made.Array<PushButton>("Cmd_ZoomIn");
    ControlArray<Slider> Slider_ImageZoom = made.Array<Slider>("Slider_ImageZoom");
    ControlArray<Label> lbl_ZoomPercent = made.Array<Label>("lbl_ZoomPercent");

    TabControl& TabControl_Effects = made.Single<TabControl>("TabControl_Effects");
    ContainerPanel& Resizer_Adjustments = made.Single<ContainerPanel>("Resizer_Adjustments");
    ContainerPanel& Resizer_Filters = made.Single<ContainerPanel>("Resizer_Filters");
    ContainerPanel& Resizer_Effects = made.Single<ContainerPanel>("Resizer_Effects");
    ContainerPanel& Resizer_Resize = made.Single<ContainerPanel>("Resizer_Resize");
    ControlArray<Slider> Slider_Tab = made.Array<Slider>("Slider_Tab");
    ControlArray<Label> lbl_SliderName = made.Array<Label>("lbl_SliderName");
    ControlArray<Label> lbl_SliderTab = made.Array<Label>("lbl_SliderTab");
    ControlArray<Label> lbl_SliderNameRightSide = made.Array<Label>("lbl_SliderNameRightSide");
    ControlArray<PushButton> Cmd_ResetEffects = made.Array<PushButton>("Cmd_ResetEffects");
    ControlArray<PushButton> Cmd_Reset = made.Array<PushButton>("Cmd_Reset");
    ControlArray<PushButton> Cmd_Tab = made.Array<PushButton>("Cmd_Tab");
    ControlArray<PushButton> Cmd_Icon = made.Array<PushButton>("Cmd_Icon");
    ControlArray<GroupBox> GroupBox_Icons = made.Array<GroupBox>("GroupBox_Icons");

    GroupBox& GroupBox_Resize = made.Single<GroupBox>("GroupBox_Resize");
    ControlArray<Label> lbl_Resize = made.Array<Label>("lbl_Resize");
    ControlArray<RadioButton> RadioButton_Resize = made.Array<RadioButton>("RadioButton_Resize");
    ComboBox& Combo_ResizePredefined = made.Single<ComboBox>("Combo_ResizePredefined");
    EditField& Txt_ImageWidth = made.Single<EditField>("Txt_ImageWidth");
    EditField& Txt_ImageHeight = made.Single<EditField>("Txt_ImageHeight");
    EditField& Txt_ResizePercent = made.Single<EditField>("Txt_ResizePercent");
    UpDown& UpDown_ImageWidth = made.Single<UpDown>("UpDown_ImageWidth");
    UpDown& UpDown_ImageHeight = made.Single<UpDown>("UpDown_ImageHeight");
    UpDown& UpDown_ResizePercent = made.Single<UpDown>("UpDown_ResizePercent");

    ReportList& HistoryList = made.Single<ReportList>("HistoryList");
    WebBrowser& WebBrowser1 = made.Single<WebBrowser>("WebBrowser1");
};

} // namespace pictorel
