// The tool bar: open, save, undo, redo, and the commands that other rooms do.
#pragma once

#include "controls/CommonDialog.h"
#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/PushButton.h"
#include "controls/ReportList.h"
#include "editor/EditHistory.h"
#include "editor/EditorServices.h"
#include "editor/Image_Mods.h"
#include "editor/PictureFiles.h"
#include "platform/Messages.h"

#include <functional>

namespace pictorel {

struct FileCommandControls {
    ControlArray<PushButton> Cmd_Panel; // Open, Save, Undo, Redo, Print, Scan, Tools, About
    ReportList& HistoryList;
    CommonDialog& CDialog_Open;
};

class FileCommands {
  public:
    FileCommands(Image_Mods& document, PictureFiles& files, EditHistory& history,
                 FileCommandControls controls, EditorServices& services, Messages& messages);

    void Cmd_Panel_Click(int index);

    // What Open does, with the same questions, for a file that is known already.
    void OpenFile(const QString& fileName);

    // Asks "Save Changes ?" while the picture is changed. False where the command at hand must end: the
    // person cancelled, or chose to save and that did not happen.
    bool OfferToSaveChanges();

    // After another picture was loaded: every panel at its defaults, and a history of one row, "Open".
    void ShowAsFreshlyOpened();

  private:
    void Open();
    void OpenBy(const std::function<bool()>& load);
    void Save();
    void Undo();
    void Redo();
    void UpdateUndoRedo();

    Image_Mods& document_;
    PictureFiles& files_;
    EditHistory& history_;
    FileCommandControls controls_;
    EditorServices& services_;
    Messages& messages_;
    Events events_;
};

} // namespace pictorel
