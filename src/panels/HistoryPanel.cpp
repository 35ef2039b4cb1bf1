// The history list and its buttons, see HistoryPanel.h.
#include "panels/HistoryPanel.h"

#include "controls/FocusKeeper.h"
#include "platform/CarryOn.h"

namespace pictorel {
namespace {

constexpr QLatin1String kActive("1");
constexpr QLatin1String kInactive("0");

} // namespace

HistoryPanel::HistoryPanel(Editor& editor, HistoryPanelControls controls, PictureControls& pictureControls)
    : editor_(editor), controls_(controls), pictureControls_(pictureControls) {
    events_.On(controls_.HistoryList, &ReportList::RowPicked, [this] { HistoryList_SelectionChanged(); });
}

void HistoryPanel::Show() {
    ReportList& list = controls_.HistoryList;
    const History& history = editor_.History.States();
    list.RemoveAllRecords();
    for (int row = 0; row < history.Count(); ++row) {
        const HistoryState& state = history.State(row);
        const unsigned colour = row > history.Active() || !state.restorable ? kSilver : kBlack;
        const QString spoken = row > history.Active()    ? QObject::tr("can be redone")
                               : row == history.Active() ? QObject::tr("active")
                                                         : QString();
        list.AddRecord().items = {{state.caption, colour, spoken},
                                  {state.imageFile},
                                  {row == history.Active() ? kActive : kInactive}};
    }
    list.Populate();
    if (history.Active() >= 0) {
        list.SelectRow(history.Active());
    }
}

void HistoryPanel::UpdateUndoRedoButtons() {
    const History& history = editor_.History.States();
    CarryOn([&] { controls_.UndoButton.SetEnabled(history.UndoRow() >= 0); },
            [&] { controls_.RedoButton.SetEnabled(history.RedoRow() >= 0); });
}

void HistoryPanel::HistoryList_SelectionChanged() {
    ReportList& list = controls_.HistoryList;
    const int row = list.FirstSelectedRow();
    {
        const FocusKeeper focus(list);
        const Editor::Command command(editor_);
        CarryOn([&] { list.SetEnabled(false); },
                [&] {
                    if (editor_.History.States().State(row).restorable) {
                        editor_.History.RestoreHistoryEntry(row);
                    } else {
                        Show(); // the selection goes back to the active row
                    }
                },
                [&] { pictureControls_.SetEditingEnabled(false); },     //
                [&] { editor_.ReducedCopy.UpdatePreviewImage(kSlot); }, //
                [&] { editor_.Document.PreviewOutdated = false; },      //
                [&] { pictureControls_.SetEditingEnabled(true); },      //
                [&] { UpdateUndoRedoButtons(); }, [&] { list.SetEnabled(true); });
    }
    list.FocusList();
}

} // namespace pictorel
