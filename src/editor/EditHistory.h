// The edit history on disk: every state a working file, with undo and redo.
#pragma once

#include "editor/EditorObserver.h"
#include "editor/History.h"
#include "editor/Image_Mods.h"
#include "editor/PictureFiles.h"

#include <QString>

namespace pictorel {

// Row p owns "tmpimg_<slot>_<p + 1>.jpg" among the working files. The routines stop at their first error and
// are then false; what was done before it stays done. A state whose working file cannot be written or read is
// said once, by the loader's or the saver's message, and is not offered any more; the picture on the screen
// stays, and so does its row.
class EditHistory {
  public:
    EditHistory(Image_Mods& document, PictureFiles& files, EditorObserver*& observer);

    const History& States() const { return history_; }

    // Commits the slot's working picture as a new last state and makes it the active one; states that could
    // have been redone go, and so does the oldest beyond 15.
    bool AddHistoryEntry(const QString& caption, PictureSlot slot);

    // Loads the working file of state `index` into slot 0 and makes it the active one.
    bool RestoreHistoryEntry(int index);

    bool UndoStep(); // false where there is nothing to go back to
    bool RedoStep();

    // Takes over states with working files of another folder, which stay there, and loads the active one, or
    // the nearest before or behind it that can be read. The old states go.
    bool Adopt(std::vector<HistoryState> states, int active);

    // Deletes every state's working file and the reduced copy's, and forgets the states.
    bool DeleteWorkingFiles();

  private:
    QString WorkingFile(PictureSlot slot, int number) const;
    void DeleteIfThere(const QString& fileName) const;
    void Renumber(PictureSlot slot);

    Image_Mods& document_;
    PictureFiles& files_;
    EditorObserver*& observer_;
    History history_;
};

} // namespace pictorel
