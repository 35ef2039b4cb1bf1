// The edit history, see EditHistory.h.
#include "editor/EditHistory.h"

#include "platform/CarryOn.h"
#include "platform/PumpEvents.h"

namespace pictorel {
namespace {

constexpr QLatin1String kActive("1");
constexpr QLatin1String kInactive("0");

ReportItem& ItemOf(ReportList& list, int row, HistoryColumn column) {
    return list.Item(row, static_cast<int>(column));
}

bool IsActive(ReportList& list, int row) {
    return ItemOf(list, row, HistoryColumn::Active).value == kActive;
}

void MarkActive(ReportList& list, int active) {
    for (int row = 0; row < list.Count(); ++row) {
        ItemOf(list, row, HistoryColumn::Active).value = kInactive;
    }
    ItemOf(list, active, HistoryColumn::Active).value = kActive;
}

// Rows up to the active one are black, those after it, which can be redone, silver.
void ColourRows(ReportList& list) {
    bool beforeActive = true;
    for (int row = 0; row < list.Count(); ++row) {
        ItemOf(list, row, HistoryColumn::Caption).textColour = beforeActive ? kBlack : kSilver;
        beforeActive = beforeActive && !IsActive(list, row);
    }
}

} // namespace

EditHistory::EditHistory(Image_Mods& document, PictureFiles& files, EditorServices& services)
    : document_(document), files_(files), services_(services) {}

QString EditHistory::WorkingFile(PictureSlot slot, int number) {
    return document_.GetTempFolder() + QStringLiteral("tmpimg_%1_%2.jpg").arg(slot).arg(number);
}

void EditHistory::DropRedoRows(ReportList& historyList) {
    for (int row = historyList.Count() - 1; row >= 0; --row) {
        if (ItemOf(historyList, row, HistoryColumn::Caption).textColour == kSilver) {
            document_.FileSystem.Delete(ItemOf(historyList, row, HistoryColumn::ImageFile).value);
            historyList.RemoveRecord(row);
        }
    }
}

void EditHistory::DropOldestRow(PictureSlot slot, ReportList& historyList) {
    historyList.RemoveRecord(0);
    historyList.Populate();
    document_.FileSystem.Delete(WorkingFile(slot, 1));
}

void EditHistory::Renumber(PictureSlot slot, ReportList& historyList) {
    for (int row = 0; row < historyList.Count(); ++row) {
        QString& file = ItemOf(historyList, row, HistoryColumn::ImageFile).value;
        const QString wanted = WorkingFile(slot, row + 1);
        document_.FileSystem.Move(file, wanted);
        document_.ImageCodec->FileRenamed(file.toStdString(), wanted.toStdString());
        file = wanted;
    }
    historyList.Populate();
    PumpEvents();
}

bool EditHistory::AddHistoryEntry(const QString& caption, PictureSlot slot, ReportList& historyList) {
    return StopAtFirstError([&] {
        document_.Transforms(slot).CopyPicture(document_.ImagePixels);
        DropRedoRows(historyList);
        const int number = historyList.Count() + 1;
        const QString file = WorkingFile(slot, number);
        historyList.AddRecord().items = {{caption}, {file}, {QStringLiteral(" ")}};
        historyList.Populate();
        PumpEvents();
        files_.SaveImageFile(slot, file, QStringLiteral("JPG"));
        if (historyList.Count() > kHistoryRows) {
            DropOldestRow(slot, historyList);
        }
        if (historyList.Count() == kHistoryRows) {
            Renumber(slot, historyList);
        }
        MarkActive(historyList, historyList.Count() - 1);
        historyList.Populate();
        historyList.SelectRow(historyList.Count() - 1); // the person sees which row is the active one
        return true;
    });
}

bool EditHistory::RestoreHistoryEntry(int index, ReportList& historyList) {
    return StopAtFirstError([&] {
        files_.LoadImageFile(0, ItemOf(historyList, index, HistoryColumn::ImageFile).value);
        MarkActive(historyList, index);
        services_.RepaintWindow();
        PumpEvents();
        ColourRows(historyList);
        historyList.Populate();
        services_.RepaintWindow();
        return true;
    });
}

bool EditHistory::UndoStep(ReportList& historyList) {
    return StopAtFirstError([&] {
        bool restored = false;
        // From the first row on, so that the row just restored is not taken for the active one again.
        for (int row = 0; row < historyList.Count(); ++row) {
            if (IsActive(historyList, row) && row >= 1) {
                restored = RestoreHistoryEntry(row - 1, historyList);
                historyList.SelectRow(row - 1);
            }
        }
        return restored;
    });
}

bool EditHistory::RedoStep(ReportList& historyList) {
    return StopAtFirstError([&] {
        for (int row = 0; row + 1 < historyList.Count(); ++row) {
            if (IsActive(historyList, row)) {
                const bool restored = RestoreHistoryEntry(row + 1, historyList);
                historyList.SelectRow(row + 1);
                return restored;
            }
        }
        return false;
    });
}

void EditHistory::UpdateUndoRedoButtons(PushButton& undoButton, PushButton& redoButton,
                                        ReportList& historyList) {
    CarryOn([&] {
        if (historyList.Count() == 0) {
            undoButton.SetEnabled(false);
            redoButton.SetEnabled(false);
        }
        for (int row = 0; row < historyList.Count(); ++row) {
            if (IsActive(historyList, row)) {
                undoButton.SetEnabled(row > 0);
                redoButton.SetEnabled(row < historyList.Count() - 1);
            }
        }
    });
}

bool EditHistory::DeleteWorkingFiles(ReportList& historyList) {
    return StopAtFirstError([&] {
        for (int row = 0; row < historyList.Count(); ++row) {
            document_.FileSystem.Delete(ItemOf(historyList, row, HistoryColumn::ImageFile).value);
        }
        historyList.RemoveAllRecords();
        historyList.Populate();
        document_.FileSystem.Delete(document_.GetTempFolder() + QStringLiteral("tmp_preview.jpg"));
        return true;
    });
}

HistoryPanel::HistoryPanel(EditHistory& history, HistoryPanelControls controls, EditorServices& services)
    : history_(history), controls_(controls), services_(services) {
    events_.On(controls_.HistoryList, &ReportList::RowPicked, [this] { HistoryList_SelectionChanged(); });
}

void HistoryPanel::HistoryList_SelectionChanged() {
    ReportList& list = controls_.HistoryList;
    CarryOn([&] { list.SetEnabled(false); },
            [&] { history_.RestoreHistoryEntry(list.FirstSelectedRow(), list); },
            [&] { services_.SetEditingEnabled(false); }, //
            [&] { services_.UpdatePreviewImage(0); },    //
            [&] { services_.SetEditingEnabled(true); },
            [&] { EditHistory::UpdateUndoRedoButtons(controls_.UndoButton, controls_.RedoButton, list); },
            [&] { list.SetEnabled(true); }, //
            [&] { list.FocusList(); });
}

} // namespace pictorel
