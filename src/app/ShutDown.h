// Every road out of the editor: the question about unsaved changes, the clearing up, the end.
#pragma once

#include "commands/FileCommands.h"
#include "commands/scan/ImageTwain.h"
#include "commands/scan/ScanCommand.h"
#include "controls/Events.h"
#include "controls/PopupControl.h"
#include "controls/WebBrowser.h"
#include "editor/Editor.h"
#include "notices/Popup_Mod.h"
#include "panels/PreviewWindow.h"

#include <QElapsedTimer>
#include <QWidget>

class QCloseEvent;
class QSessionManager;

namespace pictorel {

// What the window is made of and has to be brought to its end.
struct ShutDownParts {
    Editor& editor;
    FileCommands& fileCommands;
    ScanCommand& scanCommand;
    ImageTwain& imageTwain;
    PreviewWindow& preview;
    WebBrowser& webBrowser;
    Popup_Mod& popups;
    PopupControl& splash;
};

// The window ends at a moment when no handler runs: a close or a signal that comes in the middle of one, or
// while a dialog is open, waits. Dialogs are closed for it as if they were cancelled.
class ShutDown {
  public:
    ShutDown(QWidget& window, ShutDownParts parts);

    // The window's close event: put off to its moment, unless no event loop runs that could bring one.
    void Form_Close(QCloseEvent& event);

    // Ends the editor as its close box does, as soon as that can be. Asked again meanwhile, it is the same
    // request.
    void RequestEnd();

    // The session ends. False keeps it. The answer holds for a close that follows soon, unless the picture is
    // edited in between; where nobody may be asked, the session ends.
    bool SessionMayEnd(bool mayAsk);

  private:
    bool Form_QueryUnload(); // false keeps the window
    void Form_Unload();
    void GoOn();
    void CommitSession(QSessionManager& manager);

    QWidget& window_;
    ShutDownParts parts_;
    bool endRequested_ = false;
    bool isMoment_ = false;         // the window may close now
    bool asking_ = false;           // the question, or its Save dialog, is open
    PixelArray answeredForSession_; // the picture for which the session's question was answered ...
    QElapsedTimer sinceAnswer_;     // ... and when: a log-out that was called off silences no later close
    Events events_;
};

} // namespace pictorel
