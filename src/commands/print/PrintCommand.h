// The tool bar's Print command.
#pragma once

#include "commands/print/ImagePaint.h"
#include "controls/Events.h"
#include "controls/PushButton.h"
#include "editor/Image_Mods.h"
#include "platform/Messages.h"

namespace pictorel {

class PrintCommand {
  public:
    // `button` is the tool bar's Print button.
    PrintCommand(const Image_Mods& document, ImagePaint& imagePaint, PushButton& button, Messages& messages);

    void Print();

  private:
    const Image_Mods& document_;
    ImagePaint& imagePaint_;
    Messages& messages_;
    Events events_;
};

} // namespace pictorel
