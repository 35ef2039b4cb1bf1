// Quarter turns and mirrors, see RotateFlip.h.
#include "panels/RotateFlip.h"

#include "controls/FocusKeeper.h"
#include "platform/CarryOn.h"
#include "platform/Texts.h"

#include <utility>

namespace pictorel {

RotateFlip::RotateFlip(Editor& editor, RotateFlipControls controls, HistoryPanel& historyPanel,
                       std::function<void()> fitView)
    : editor_(editor), controls_(controls), historyPanel_(historyPanel), fitView_(std::move(fitView)) {
    struct Row {
        PushButton& button;
        Operation operation;
        bool refits; // the picture's sides change places
    };
    for (const Row& row : {Row{controls_.Cmd_RotateLeft, Operation::TurnLeft, true},
                           Row{controls_.Cmd_RotateRight, Operation::TurnRight, true},
                           Row{controls_.Cmd_FlipV, Operation::FlipVertical, false},
                           Row{controls_.Cmd_FlipH, Operation::FlipHorizontal, false}}) {
        events_.On(row.button, &PushButton::clicked,
                   [this, &button = row.button, operation = row.operation, refits = row.refits] {
                       Edit(button, operation, refits ? fitView_ : std::function<void()>());
                   });
    }
}

void RotateFlip::Edit(PushButton& button, Operation operation, const std::function<void()>& afterApplying) {
    const FocusKeeper focus(button);
    CarryOn([&] { button.SetEnabled(false); },
            [&] { editor_.Commit(FromView(RowOf(operation).caption), operation, {}, afterApplying); },
            [&] { historyPanel_.UpdateUndoRedoButtons(); }, //
            [&] { button.SetEnabled(true); });
}

} // namespace pictorel
