// The tool bar: open, save, undo, redo, and the two buttons that show a window.
#pragma once

#include "commands/PictureArrival.h"
#include "controls/CommonDialog.h"
#include "controls/ControlArray.h"
#include "controls/Events.h"
#include "controls/PushButton.h"
#include "editor/Editor.h"
#include "platform/Messages.h"

#include <functional>

namespace pictorel {

struct FileCommandControls {
    ControlArray<PushButton> Cmd_Panel; // Open, Save, Undo, Redo, Print, Scan, Tools, About
    CommonDialog& CDialog_Open;
};

// What the commands ask of the rest of the window.
struct FileCommandServices {
    std::function<void()> endAttention;   // stops the blink of Open and closes the getting-started tag
    std::function<void()> resetPanels;    // sliders and the Resize page as for a picture just opened
    std::function<void()> enableEditing;  // every control that depends on an open picture
    std::function<void()> settleUndoRedo; // the Undo and Redo buttons follow the history
    std::function<void()> showTools;
    std::function<void()> showAbout;
    QString applicationTitle;
};

class FileCommands {
  public:
    FileCommands(Editor& editor, FileCommandControls controls, FileCommandServices services,
                 Messages& messages);

    void Cmd_Panel_Click(int index);

    // What Open does, with the same questions, for a picture that is there already. Says so where there is no
    // such file, and which others were left.
    void OpenArrival(const PictureArrival& arrival);

    // Brings back what another editor left, with the question of Open first. False where that did not happen.
    bool Recover(const RecoveryRecord& record);

    // Asks "Save Changes ?" while the picture is changed. False where the command at hand must end: the
    // person cancelled, or chose to save and that did not happen. What was saved is changed no longer.
    bool OfferToSaveChanges();

    // After another picture was loaded: every panel at its defaults, and a history of one row, "Open".
    void ShowAsFreshlyOpened();

    // Both show their dialog and then load or save; true when a file was chosen and that went well.
    bool OpenImageDialog();
    bool SaveImageDialog();

  private:
    void Open();
    void OpenBy(const std::function<bool()>& load);
    void Save();
    void Step(void (Editor::*step)());
    bool OrShowError(const std::function<bool()>& routine);

    Editor& editor_;
    FileCommandControls controls_;
    FileCommandServices services_;
    Messages& messages_;
    Events events_;
};

} // namespace pictorel
