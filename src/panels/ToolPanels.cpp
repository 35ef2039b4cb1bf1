// The tool panels, see ToolPanels.h.
#include "panels/ToolPanels.h"

#include "controls/FocusKeeper.h"
#include "editor/SliderCatalogue.h"
#include "platform/CarryOn.h"

#include <algorithm>
#include <array>
#include <utility>

namespace pictorel {
namespace {

struct OneClickRow {
    int element; // of Cmd_Tab
    Operation operation;
    Values values;
};

constexpr std::array<OneClickRow, 5> kOneClick{{
    {0, Operation::AutoContrast, {}},
    {1, Operation::AutoLevels, {}},
    {2, Operation::Invert, {}},
    {5, Operation::Halftone, {1, 25, 0}},
    {6, Operation::Emboss, {10, 200, 4}},
}};

} // namespace

ToolPanels::ToolPanels(Editor& editor, ToolPanelControls controls, HistoryPanel& historyPanel,
                       LivePreview& livePreview)
    : editor_(editor),
      controls_(std::move(controls)),
      historyPanel_(historyPanel),
      livePreview_(livePreview) {
    const auto bind = [this](const ControlArray<PushButton>& buttons, void (ToolPanels::*handler)(int)) {
        for (int i = 0; i < buttons.Count(); ++i) {
            events_.On(buttons(i), &PushButton::clicked, [this, handler, i] { (this->*handler)(i); });
        }
    };
    bind(controls_.Cmd_Tab, &ToolPanels::Cmd_Tab_Click);
    bind(controls_.Cmd_Reset, &ToolPanels::Cmd_Reset_Click);
    bind(controls_.Cmd_ResetEffects, &ToolPanels::Cmd_ResetEffects_Click);
}

void ToolPanels::Cmd_Tab_Click(int index) {
    const auto row = std::find_if(kOneClick.begin(), kOneClick.end(),
                                  [=](const OneClickRow& candidate) { return candidate.element == index; });
    if (row == kOneClick.end()) {
        return;
    }
    PushButton& button = controls_.Cmd_Tab(index);
    const FocusKeeper focus(button);
    CarryOn([&] { button.SetEnabled(false); }, //
            [&] { editor_.Commit(button.Caption(), row->operation, row->values); },
            [&] { historyPanel_.UpdateUndoRedoButtons(); }, //
            [&] { button.SetEnabled(true); });
}

void ToolPanels::Cmd_Reset_Click(int index) {
    ResetSliderGroup(index + 1);
}

void ToolPanels::Cmd_ResetEffects_Click(int index) {
    if (index >= 0 && index < kSliderCount) {
        controls_.Slider_Tab(index).SetValue(SliderCatalogue()[static_cast<std::size_t>(index)].defaultValue);
    }
    controls_.Cmd_ResetEffects(index).SetVisible(false);
    livePreview_.Slider_Tab_Change(index);
}

void ToolPanels::ResetSliderGroup(int group) {
    const auto catalogue = SliderCatalogue();
    for (int i = 0; i < kSliderCount; ++i) {
        const SliderRow& row = catalogue[static_cast<std::size_t>(i)];
        if (row.resetGroup == group) {
            controls_.Slider_Tab(i).SetValue(row.defaultValue);
            controls_.lbl_SliderTab(i).SetCaption(SliderValueText(i, row.defaultValue));
        }
    }
    for (PushButton* const reset : controls_.Cmd_ResetEffects) {
        reset->SetVisible(false);
    }
    livePreview_.ShowPending();
}

} // namespace pictorel
