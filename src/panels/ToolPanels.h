// The tool panels: one-click buttons, resets, and the switch of every picture-dependent control.
#pragma once

#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/GroupBox.h"
#include "controls/Label.h"
#include "controls/PushButton.h"
#include "controls/RadioButton.h"
#include "controls/ReportList.h"
#include "controls/Slider.h"
#include "editor/EditHistory.h"
#include "editor/OperationDispatcher.h"
#include "panels/LivePreview.h"

namespace pictorel {

struct ToolPanelControls {
    ControlArray<PushButton> Cmd_Panel;
    ControlArray<PushButton> Cmd_Tab;
    ControlArray<PushButton> Cmd_Reset;
    ControlArray<PushButton> Cmd_ResetEffects;
    ControlArray<Slider> Slider_Tab;
    ControlArray<Label> lbl_SliderTab;
    ReportList& HistoryList;
    // What SetEditingEnabled switches, in its order; Cmd_Panel(0), Open, is not among it.
    std::vector<Control*> pictureDependent;
};

class ToolPanels {
  public:
    ToolPanels(ToolPanelControls controls, OperationDispatcher& dispatcher, EditHistory& history,
               LivePreview& livePreview);

    void Cmd_Tab_Click(int index); // the one-click operations; other elements belong to the Resize panel
    void Cmd_Reset_Click(int index);
    void Cmd_ResetEffects_Click(int index);

    // Sets the group's sliders and their texts to the defaults; the picture stays as it is. A group other
    // than 1, 2 or 3 resets no slider.
    void ResetSliderGroup(int group);

    void SetEditingEnabled(bool enabled);

  private:
    ToolPanelControls controls_;
    OperationDispatcher& dispatcher_;
    EditHistory& history_;
    LivePreview& livePreview_;
    Events events_;
};

} // namespace pictorel
