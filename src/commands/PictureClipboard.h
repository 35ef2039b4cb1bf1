// The picture to the clipboard and from it.
#pragma once

#include "commands/FileCommands.h"
#include "editor/Editor.h"
#include "platform/Messages.h"

namespace pictorel {

class PictureClipboard {
  public:
    PictureClipboard(const Editor& editor, FileCommands& fileCommands, Messages& messages)
        : editor_(editor), fileCommands_(fileCommands), messages_(messages) {}

    // What is on the screen, as PNG; it is encoded when somebody asks for it.
    void Copy() const;

    // Opens what the clipboard holds, be it a picture or a file, as Open does.
    void Paste();

  private:
    const Editor& editor_;
    FileCommands& fileCommands_;
    Messages& messages_;
};

} // namespace pictorel
