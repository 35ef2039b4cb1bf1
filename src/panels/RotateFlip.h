// Quarter turns and mirrors: one click, one history row.
#pragma once

#include "controls/Events.h"
#include "controls/Label.h"
#include "controls/PushButton.h"
#include "controls/ReportList.h"
#include "editor/EditHistory.h"
#include "editor/OperationDispatcher.h"
#include "editor/PictureFiles.h"
#include "panels/LivePreview.h"

namespace pictorel {

struct RotateFlipControls {
    PushButton& Cmd_RotateLeft;
    PushButton& Cmd_RotateRight;
    PushButton& Cmd_FlipV;
    PushButton& Cmd_FlipH;
    PushButton& UndoButton;
    PushButton& RedoButton;
    ReportList& HistoryList;
    Label& lbl_ImageInfo;
    Label& lbl_ResizeOriginal; // "Original size" line of the Resize panel
};

class RotateFlip {
  public:
    RotateFlip(Image_Mods& document, PictureFiles& files, RotateFlipControls controls,
               OperationDispatcher& dispatcher, EditHistory& history, EditorServices& services,
               LivePreview& livePreview);

    void Cmd_RotateLeft_Click() { Turn(controls_.Cmd_RotateLeft, Operation::TurnLeft, "Rotate Left"); }
    void Cmd_RotateRight_Click() { Turn(controls_.Cmd_RotateRight, Operation::TurnRight, "Rotate Right"); }
    void Cmd_FlipV_Click() { Flip(controls_.Cmd_FlipV, Operation::FlipVertical, "Flip Vertical"); }
    void Cmd_FlipH_Click() { Flip(controls_.Cmd_FlipH, Operation::FlipHorizontal, "Flip Horizontal"); }

  private:
    void Turn(PushButton& button, Operation operation, const char* caption);
    void Flip(PushButton& button, Operation operation, const char* caption);
    void Apply(Operation operation);
    void Record(const char* caption);

    Image_Mods& document_;
    PictureFiles& files_;
    RotateFlipControls controls_;
    OperationDispatcher& dispatcher_;
    EditHistory& history_;
    EditorServices& services_;
    LivePreview& livePreview_;
    Events events_;
};

} // namespace pictorel
