// The Scan command: a page from the scanner becomes the open picture.
#pragma once

#include "commands/FileCommands.h"
#include "commands/scan/ImageTwain.h"
#include "controls/Events.h"
#include "controls/ProgressBar.h"
#include "controls/PushButton.h"
#include "editor/Editor.h"
#include "platform/Messages.h"

#include <QTimer>

#include <functional>

namespace pictorel {

struct ScanCommandControls {
    PushButton& ScanButton; // Cmd_Panel(5)
    QTimer& Timer_Scanner;
    ProgressBar& ProgressBarControl;
};

// What a scan asks of the rest of the window.
struct ScanCommandServices {
    std::function<void(bool on)> setCommandsEnabled; // off: no control takes input, each keeps its own state
    std::function<void()> endAttention;
};

// From the click until the page is there or is given up, the window paints but takes no command, so neither
// this one nor an edit can come in between. Whatever ends without a page leaves picture and history alone.
class ScanCommand {
  public:
    ScanCommand(Editor& editor, FileCommands& fileCommands, ImageTwain& imageTwain,
                ScanCommandControls controls, ScanCommandServices services, Messages& messages);

    void Scan();
    void Timer_Scanner_Timer();

    void Abandon(); // the window ends: a page that still comes is not taken

  private:
    void SourcesKnown();
    void Acquire();
    void TakePage();
    bool WritePage(const QString& fileName);
    void Finish(); // gives the commands back

    Editor& editor_;
    FileCommands& fileCommands_;
    ImageTwain& imageTwain_;
    ScanCommandControls controls_;
    ScanCommandServices services_;
    Messages& messages_;
    bool abandoned_ = false;
    Events events_;
};

} // namespace pictorel
