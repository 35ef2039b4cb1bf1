// Prints the open picture, see PrintCommand.h.
#include "commands/print/PrintCommand.h"

#include "platform/CarryOn.h"

namespace pictorel {
namespace {

constexpr PictureSlot kSlot = 0;
constexpr std::int32_t kCentredInProportion = 11;
constexpr std::int32_t kPixels = 0;

} // namespace

PrintCommand::PrintCommand(const Image_Mods& document, ImagePaint& imagePaint, PushButton& button,
                           Messages& messages)
    : document_(document), imagePaint_(imagePaint), messages_(messages) {
    events_.On(button, &PushButton::clicked, [this] { Print(); });
}

void PrintCommand::Print() {
    const std::int32_t width = document_.ImageWidth(kSlot);
    const std::int32_t height = document_.ImageHeight(kSlot);
    PixelArray picture;
    bool printed = false;
    CarryOn([&] { document_.Transforms(kSlot).CopyPicture(picture); },
            [&] { imagePaint_.PreparePage(width, height); },
            [&] { imagePaint_.SetPageFit(kCentredInProportion); }, [&] { imagePaint_.SetPageUnit(kPixels); },
            [&] { imagePaint_.DrawPicture(picture, 0, 0, width - 1, height - 1); },
            [&] { imagePaint_.FinishPage(); }, [&] { printed = imagePaint_.Print(true, true); });
    if (!printed) {
        messages_.Show(QStringLiteral("Can't print the image !"), QString(), MessageIcon::Critical);
    }
}

} // namespace pictorel
