// The sliders: preview while one is held, commit when it is let go, nothing when it is given up.
#pragma once

#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/Label.h"
#include "controls/ProgressBar.h"
#include "controls/PushButton.h"
#include "controls/ReportList.h"
#include "controls/Slider.h"
#include "controls/TabControl.h"
#include "editor/EditHistory.h"
#include "editor/EditorServices.h"
#include "editor/OperationDispatcher.h"
#include "editor/ReducedCopy.h"

#include <functional>

namespace pictorel {

struct LivePreviewControls {
    ControlArray<Slider> Slider_Tab;
    ControlArray<Label> lbl_SliderTab;
    ControlArray<Label> lbl_SliderName;
    TabControl& TabControl_Effects;
    ProgressBar& ProgressBarControl;
    ReportList& HistoryList;
    PushButton& UndoButton;
    PushButton& RedoButton;
};

// The floating window that shows the preview.
class PreviewWindow {
  public:
    virtual ~PreviewWindow() = default;

    virtual ImageView& View() = 0; // loads the window where it is not loaded, without showing it
    virtual void SetTitle(const QString& title) = 0;
    virtual void ShowModeless() = 0;
    virtual bool IsShown() const = 0;
    virtual void RepaintNow() = 0;
    virtual void Unload() = 0;
};

class LivePreview {
  public:
    LivePreview(Image_Mods& document, LivePreviewControls controls, OperationDispatcher& dispatcher,
                ReducedCopy& reducedCopy, EditHistory& history, EditorServices& services,
                PreviewWindow& window);

    void Slider_Tab_MouseDown(int slider);
    void Slider_Tab_Change(int slider);
    void Slider_Tab_MouseUp(int slider);
    void Slider_Tab_Cancelled(int slider);

    // The reduced copy no longer matches what the view shows and is rebuilt before the next preview.
    bool PreviewOutdated = false;

    // Where the preview window goes, twips on the screen; computed at each press.
    std::int32_t PreviewWindowTop = 0;
    std::int32_t PreviewWindowLeft = 0;

    // Outer position of the main window on the screen, twips.
    std::function<std::pair<float, float>()> WindowPosition;

  private:
    void WriteValueText(int slider);
    void Commit(int slider);
    void Progress(int value);

    Image_Mods& document_;
    LivePreviewControls controls_;
    OperationDispatcher& dispatcher_;
    ReducedCopy& reducedCopy_;
    EditHistory& history_;
    EditorServices& services_;
    PreviewWindow& window_;
    Events events_;
};

} // namespace pictorel
