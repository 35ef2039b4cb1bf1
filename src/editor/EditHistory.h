// The edit history: up to 15 states of the picture, each a row of the list and a working file on disk.
#pragma once

#include "controls/Events.h"
#include "controls/PushButton.h"
#include "controls/ReportList.h"
#include "editor/EditorServices.h"
#include "editor/Image_Mods.h"
#include "editor/PictureFiles.h"

#include <QString>

namespace pictorel {

// Columns of the history list; the person sees the first only.
enum class HistoryColumn { Caption = 0, ImageFile = 1, Active = 2 };

inline constexpr int kHistoryRows = 15;

// The routines stop at their first error and then return False, without a message of their own; what was done
// before the error stays done. Invariants after each: at most 15 rows; one of them is active ("1" in its
// Active column); rows after it are silver; row p owns "tmpimg_<slot>_<p + 1>.jpg" in the temporary folder.
class EditHistory {
  public:
    EditHistory(Image_Mods& document, PictureFiles& files, EditorServices& services);

    // Commits the slot's working picture as a new last row and makes it the active one; rows that could have
    // been redone go, and so does the oldest beyond 15.
    bool AddHistoryEntry(const QString& caption, PictureSlot slot, ReportList& historyList);

    // Loads the working file of row `index` into slot 0 and makes that row the active one.
    bool RestoreHistoryEntry(int index, ReportList& historyList);

    bool UndoStep(ReportList& historyList); // False on the first row
    bool RedoStep(ReportList& historyList); // False on the last row

    static void UpdateUndoRedoButtons(PushButton& undoButton, PushButton& redoButton,
                                      ReportList& historyList);

    // Deletes every row's working file and the preview copy, and empties the list.
    bool DeleteWorkingFiles(ReportList& historyList);

  private:
    QString WorkingFile(PictureSlot slot, int number);
    void DropRedoRows(ReportList& historyList);
    void DropOldestRow(PictureSlot slot, ReportList& historyList);
    void Renumber(PictureSlot slot, ReportList& historyList);

    Image_Mods& document_;
    PictureFiles& files_;
    EditorServices& services_;
};

struct HistoryPanelControls {
    ReportList& HistoryList;
    PushButton& UndoButton;
    PushButton& RedoButton;
};

// Picking a row of the history list.
class HistoryPanel {
  public:
    HistoryPanel(EditHistory& history, HistoryPanelControls controls, EditorServices& services);

    void HistoryList_SelectionChanged();

  private:
    EditHistory& history_;
    HistoryPanelControls controls_;
    EditorServices& services_;
    Events events_;
};

} // namespace pictorel
