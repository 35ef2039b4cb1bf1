// The Scan command: a page from the scanner becomes the open picture.
#pragma once

#include "commands/FileCommands.h"
#include "commands/scan/ImageTwain.h"
#include "controls/Events.h"
#include "controls/ProgressBar.h"
#include "controls/PushButton.h"
#include "editor/EditorServices.h"
#include "editor/Image_Mods.h"
#include "editor/PictureFiles.h"
#include "platform/Messages.h"

#include <QTimer>

namespace pictorel {

struct ScanCommandControls {
    PushButton& ScanButton; // Cmd_Panel(5)
    QTimer& Timer_Scanner;
    ProgressBar& ProgressBarControl;
};

// From the click until the page is there or is given up, the window paints but takes no command, so neither
// this one nor an edit can come in between. Whatever ends without a page leaves picture and history alone.
class ScanCommand {
  public:
    ScanCommand(Image_Mods& document, PictureFiles& files, FileCommands& fileCommands, ImageTwain& imageTwain,
                ScanCommandControls controls, EditorServices& services, Messages& messages);

    void Scan();
    void Timer_Scanner_Timer();

    void Abandon(); // the window ends: a page that still comes is not taken

  private:
    void SourcesKnown();
    void Acquire();
    void TakePage();
    bool WritePage(const QString& fileName);
    void Finish(); // gives the commands back

    Image_Mods& document_;
    PictureFiles& files_;
    FileCommands& fileCommands_;
    ImageTwain& imageTwain_;
    ScanCommandControls controls_;
    EditorServices& services_;
    Messages& messages_;
    bool abandoned_ = false;
    Events events_;
};

} // namespace pictorel
