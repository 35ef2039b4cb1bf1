// Quarter turns and mirrors: one click, one history row.
#pragma once

#include "controls/Events.h"
#include "controls/PushButton.h"
#include "editor/Editor.h"
#include "panels/HistoryPanel.h"

#include <functional>

namespace pictorel {

struct RotateFlipControls {
    PushButton& Cmd_RotateLeft;
    PushButton& Cmd_RotateRight;
    PushButton& Cmd_FlipV;
    PushButton& Cmd_FlipH;
};

class RotateFlip {
  public:
    // `fitView` shows the whole picture after a turn.
    RotateFlip(Editor& editor, RotateFlipControls controls, HistoryPanel& historyPanel,
               std::function<void()> fitView);

  private:
    void Edit(PushButton& button, Operation operation, const std::function<void()>& afterApplying);

    Editor& editor_;
    RotateFlipControls controls_;
    HistoryPanel& historyPanel_;
    std::function<void()> fitView_;
    Events events_;
};

} // namespace pictorel
