// The edit history on disk, see EditHistory.h.
#include "editor/EditHistory.h"

#include "editor/ImageCodec.h"
#include "platform/CarryOn.h"

#include <QFileInfo>

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace pictorel {
namespace {

// A second name costs nothing where both are on one file system.
bool LinkOrCopy(const QString& from, const QString& to) {
    std::error_code error;
    const std::filesystem::path source(from.toStdString());
    const std::filesystem::path target(to.toStdString());
    std::filesystem::remove(target, error);
    std::filesystem::create_hard_link(source, target, error);
    return !error || std::filesystem::copy_file(source, target, error);
}

} // namespace

EditHistory::EditHistory(Image_Mods& document, PictureFiles& files, EditorObserver*& observer)
    : document_(document), files_(files), observer_(observer) {}

QString EditHistory::WorkingFile(PictureSlot slot, int number) const {
    return document_.WorkingFile(QStringLiteral("tmpimg_%1_%2.jpg").arg(slot).arg(number));
}

// A file that is gone already must not stop what comes after it.
void EditHistory::DeleteIfThere(const QString& fileName) const {
    if (QFileInfo::exists(fileName)) {
        document_.FileSystem.Delete(fileName);
    }
}

bool EditHistory::AddHistoryEntry(const QString& caption, PictureSlot slot) {
    return StopAtFirstError([&] {
        document_.ImagePixels = document_.WorkingPicture(slot);
        for (const HistoryState& state : history_.DropRedo()) {
            CarryOn([&] { DeleteIfThere(state.imageFile); });
        }
        const QString file = WorkingFile(slot, history_.Count() + 1);
        const std::vector<HistoryState> pushedOut = history_.Append(caption, file);
        observer_->HistoryChanged();
        observer_->PaintPending();
        const bool written = files_.SaveImageFile(slot, file, QStringLiteral("JPG"));
        if (!written) {
            history_.MarkLost(history_.Active());
        }
        for (const HistoryState& state : pushedOut) {
            CarryOn([&] { DeleteIfThere(state.imageFile); });
        }
        if (!pushedOut.empty()) {
            Renumber(slot);
        }
        observer_->HistoryChanged();
        return written;
    });
}

// Each name was freed by the step before: the oldest state's file is gone.
void EditHistory::Renumber(PictureSlot slot) {
    for (int row = 0; row < history_.Count(); ++row) {
        const QString file = history_.State(row).imageFile;
        const QString wanted = WorkingFile(slot, row + 1);
        CarryOn([&] {
            if (file != wanted && history_.State(row).restorable) {
                document_.FileSystem.Move(file, wanted);
                document_.ImageCodec->FileRenamed(file.toStdString(), wanted.toStdString());
            }
        });
        if (history_.State(row).restorable && !QFileInfo::exists(wanted)) {
            history_.MarkLost(row);
        }
        history_.SetImageFile(row, wanted);
    }
}

bool EditHistory::RestoreHistoryEntry(int index) {
    return StopAtFirstError([&] {
        const bool loaded = files_.LoadImageFile(kSlot, history_.State(index).imageFile);
        if (loaded) {
            history_.Activate(index);
        } else {
            history_.MarkLost(index);
        }
        observer_->HistoryChanged();
        observer_->PaintPending();
        return loaded;
    });
}

bool EditHistory::UndoStep() {
    return history_.UndoRow() >= 0 && RestoreHistoryEntry(history_.UndoRow());
}

bool EditHistory::RedoStep() {
    return history_.RedoRow() >= 0 && RestoreHistoryEntry(history_.RedoRow());
}

// What is open stays until there is something in its place, so the files come under other names first.
bool EditHistory::Adopt(std::vector<HistoryState> states, int active) {
    return StopAtFirstError([&] {
        for (std::size_t row = 0; row < states.size(); ++row) {
            const QString file = document_.WorkingFile(QStringLiteral("tmp_recovered_%1.jpg").arg(row + 1));
            states[row].restorable = LinkOrCopy(states[row].imageFile, file);
            states[row].imageFile = file;
        }
        while (!states.empty() &&
               !files_.LoadImageFile(kSlot, states[static_cast<std::size_t>(active)].imageFile)) {
            DeleteIfThere(states[static_cast<std::size_t>(active)].imageFile);
            states.erase(states.begin() + active);
            active = std::max(active - 1, 0);
        }
        if (states.empty()) {
            return false;
        }
        DeleteWorkingFiles();
        history_.Restore(std::move(states), active);
        Renumber(kSlot);
        observer_->HistoryChanged();
        return true;
    });
}

bool EditHistory::DeleteWorkingFiles() {
    return StopAtFirstError([&] {
        for (const HistoryState& state : history_.States()) {
            CarryOn([&] { DeleteIfThere(state.imageFile); });
        }
        history_.Clear();
        observer_->HistoryChanged();
        DeleteIfThere(document_.WorkingFile(QStringLiteral("tmp_preview.jpg")));
        return true;
    });
}

} // namespace pictorel
