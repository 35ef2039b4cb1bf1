// The history list and the Undo and Redo buttons, drawn from the editor's history.
#pragma once

#include "controls/Events.h"
#include "controls/PushButton.h"
#include "controls/ReportList.h"
#include "editor/Editor.h"
#include "panels/PictureControls.h"

namespace pictorel {

// Columns of the history list; the person sees the first only.
enum class HistoryColumn { Caption = 0, ImageFile = 1, Active = 2 };

struct HistoryPanelControls {
    ReportList& HistoryList;
    PushButton& UndoButton;
    PushButton& RedoButton;
};

class HistoryPanel {
  public:
    HistoryPanel(Editor& editor, HistoryPanelControls controls, PictureControls& pictureControls);

    // Draws the states as they are: black up to the active one, silver those that can be redone.
    void Show();

    // Undo where there is a state to go back to, Redo where there is one to go forward to.
    void UpdateUndoRedoButtons();

    void HistoryList_SelectionChanged(); // the person picked a row

  private:
    Editor& editor_;
    HistoryPanelControls controls_;
    PictureControls& pictureControls_;
    Events events_;
};

} // namespace pictorel
