// The tool bar's Print command.
#pragma once

#include "controls/Events.h"
#include "controls/PushButton.h"
#include "document/Image_Mods.h"
#include "imaging/ImagePaint.h"
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
