// Quarter turns and mirrors, see RotateFlip.h.
#include "panels/RotateFlip.h"

#include "platform/CarryOn.h"

namespace pictorel {
namespace {

constexpr PictureSlot kSlot = 0;

} // namespace

RotateFlip::RotateFlip(Image_Mods& document, PictureFiles& files, RotateFlipControls controls,
                       OperationDispatcher& dispatcher, EditHistory& history, EditorServices& services,
                       LivePreview& livePreview)
    : document_(document),
      files_(files),
      controls_(controls),
      dispatcher_(dispatcher),
      history_(history),
      services_(services),
      livePreview_(livePreview) {
    events_.On(controls_.Cmd_RotateLeft, &PushButton::clicked, [this] { Cmd_RotateLeft_Click(); });
    events_.On(controls_.Cmd_RotateRight, &PushButton::clicked, [this] { Cmd_RotateRight_Click(); });
    events_.On(controls_.Cmd_FlipV, &PushButton::clicked, [this] { Cmd_FlipV_Click(); });
    events_.On(controls_.Cmd_FlipH, &PushButton::clicked, [this] { Cmd_FlipH_Click(); });
}

void RotateFlip::Flip(PushButton& button, Operation operation, const char* caption) {
    CarryOn([&] { button.SetEnabled(false); }, //
            [&] { Apply(operation); },         //
            [&] { Record(caption); },          //
            [&] { livePreview_.PreviewOutdated = true; }, [&] { button.SetEnabled(true); });
}

void RotateFlip::Turn(PushButton& button, Operation operation, const char* caption) {
    CarryOn([&] { button.SetEnabled(false); },        //
            [&] { Apply(operation); },                //
            [&] { files_.ReadImageWidth(kSlot); },    //
            [&] { files_.ReadImageHeight(kSlot); },   //
            [&] { document_.Views(kSlot).Fit(); },    //
            [&] { services_.UpdateZoomView(kSlot); }, //
            [&] { Record(caption); },
            [&] {
                controls_.lbl_ImageInfo.SetCaption(
                    ImageInfoText(document_.ImageWidth(kSlot), document_.ImageHeight(kSlot)));
                controls_.lbl_ImageInfo.RepaintNow();
            },
            [&] {
                controls_.lbl_ResizeOriginal.SetCaption(
                    PixelSizeText(document_.ImageWidth(kSlot), document_.ImageHeight(kSlot)));
                controls_.lbl_ResizeOriginal.RepaintNow();
            },
            [&] { livePreview_.PreviewOutdated = true; }, [&] { button.SetEnabled(true); });
}

void RotateFlip::Apply(Operation operation) {
    dispatcher_.ApplyImageOperation(kSlot, static_cast<std::int32_t>(operation), false, 0, 0, 0);
}

void RotateFlip::Record(const char* caption) {
    CarryOn([&] { history_.AddHistoryEntry(QString::fromLatin1(caption), kSlot, controls_.HistoryList); },
            [&] {
                EditHistory::UpdateUndoRedoButtons(controls_.UndoButton, controls_.RedoButton,
                                                   controls_.HistoryList);
            });
}

} // namespace pictorel
