// The tool bar's Print command.
#pragma once

#include "commands/print/ImagePaint.h"
#include "controls/Events.h"
#include "controls/PushButton.h"
#include "editor/Editor.h"
#include "platform/Messages.h"

namespace pictorel {

class PrintCommand {
  public:
    // `button` is the tool bar's Print button.
    PrintCommand(Editor& editor, ImagePaint& imagePaint, PushButton& button, Messages& messages);

    void Print();

  private:
    Editor& editor_;
    ImagePaint& imagePaint_;
    Messages& messages_;
    Events events_;
};

} // namespace pictorel
