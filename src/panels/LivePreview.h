// The sliders: preview while one is held, commit when it is let go, nothing when it is given up.
#pragma once

#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/Label.h"
#include "controls/ProgressBar.h"
#include "controls/Slider.h"
#include "controls/TabControl.h"
#include "editor/Editor.h"
#include "editor/SliderCatalogue.h"
#include "panels/HistoryPanel.h"
#include "panels/PictureControls.h"
#include "panels/PreviewWindow.h"

#include <array>
#include <cstdint>
#include <functional>
#include <utility>

namespace pictorel {

struct LivePreviewControls {
    ControlArray<Slider> Slider_Tab;
    ControlArray<Label> lbl_SliderTab;
    ControlArray<Label> lbl_SliderName;
    TabControl& TabControl_Effects;
    ProgressBar& ProgressBarControl;
};

class LivePreview {
  public:
    LivePreview(Editor& editor, LivePreviewControls controls, PictureControls& pictureControls,
                HistoryPanel& historyPanel, PreviewWindow& window);

    void Slider_Tab_MouseDown(int slider);
    void Slider_Tab_Change(int slider);
    void Slider_Tab_MouseUp(int slider);
    void Slider_Tab_Cancelled(int slider);

    // Marks the sliders that stand away from their default while the picture has no such edit.
    void ShowPending();
    void HistoryChanged();

    // Where the preview window goes, twips on the screen; computed at each press.
    std::int32_t PreviewWindowTop = 0;
    std::int32_t PreviewWindowLeft = 0;

    // Tells those who do not see the preview window.
    std::function<void(const QString&)> Announce = [](const QString&) {};

    // Outer position of the main window on the screen, twips.
    std::function<std::pair<float, float>()> WindowPosition;

  private:
    void PlaceWindow(int slider);
    void WriteValueText(int slider);
    void Commit(int slider);
    void Progress(int value);
    bool IsPending(int slider) const;

    Editor& editor_;
    LivePreviewControls controls_;
    PictureControls& pictureControls_;
    HistoryPanel& historyPanel_;
    PreviewWindow& window_;

    // By slider: the state that its last commit made, 0 for none, and the value that it stood at.
    struct LastEdit {
        std::uint64_t state = 0;
        int value = 0;
    };
    std::array<LastEdit, kSliderCount> edits_{};
    bool modifiedBefore_ = false; // the changed mark before the press or the first key
    bool trying_ = false;         // between that and its commit or its end
    Events events_;
};

} // namespace pictorel
