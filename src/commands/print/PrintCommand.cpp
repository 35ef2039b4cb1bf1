// Prints the open picture, see PrintCommand.h.
#include "commands/print/PrintCommand.h"

#include "platform/CarryOn.h"

namespace pictorel {
namespace {

constexpr std::int32_t kCentredInProportion = 11;
constexpr std::int32_t kPixels = 0;

} // namespace

PrintCommand::PrintCommand(Editor& editor, ImagePaint& imagePaint, PushButton& button, Messages& messages)
    : editor_(editor), imagePaint_(imagePaint), messages_(messages) {
    events_.On(button, &PushButton::clicked, [this] { Print(); });
}

void PrintCommand::Print() {
    const Editor::Command command(editor_);
    const std::int32_t width = editor_.Document.ImageWidth(kSlot);
    const std::int32_t height = editor_.Document.ImageHeight(kSlot);
    const PixelArray picture = editor_.Document.WorkingPicture(kSlot);
    bool printed = false;
    CarryOn([&] { imagePaint_.PreparePage(width, height); },
            [&] { imagePaint_.SetPageFit(kCentredInProportion); }, [&] { imagePaint_.SetPageUnit(kPixels); },
            [&] { imagePaint_.DrawPicture(picture, 0, 0, width - 1, height - 1); },
            [&] { imagePaint_.FinishPage(); }, [&] { printed = imagePaint_.Print(true, true); });
    if (!printed) {
        messages_.Show(QStringLiteral("Can't print the image !"), QString(), MessageIcon::Critical);
    }
}

} // namespace pictorel
