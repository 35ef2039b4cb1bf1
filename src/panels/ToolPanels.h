// The tool panels: one-click buttons and resets.
#pragma once

#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/Label.h"
#include "controls/PushButton.h"
#include "controls/Slider.h"
#include "editor/Editor.h"
#include "panels/HistoryPanel.h"
#include "panels/LivePreview.h"

namespace pictorel {

struct ToolPanelControls {
    ControlArray<PushButton> Cmd_Tab;
    ControlArray<PushButton> Cmd_Reset;
    ControlArray<PushButton> Cmd_ResetEffects;
    ControlArray<Slider> Slider_Tab;
    ControlArray<Label> lbl_SliderTab;
};

class ToolPanels {
  public:
    ToolPanels(Editor& editor, ToolPanelControls controls, HistoryPanel& historyPanel,
               LivePreview& livePreview);

    void Cmd_Tab_Click(int index); // the one-click operations; other elements belong to the Resize panel
    void Cmd_Reset_Click(int index);
    void Cmd_ResetEffects_Click(int index);

    // Sets the group's sliders and their texts to the defaults; the picture stays as it is. A group other
    // than 1, 2 or 3 resets no slider.
    void ResetSliderGroup(int group);

  private:
    Editor& editor_;
    ToolPanelControls controls_;
    HistoryPanel& historyPanel_;
    LivePreview& livePreview_;
    Events events_;
};

} // namespace pictorel
