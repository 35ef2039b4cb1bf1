// The reduced copy of the picture, see ReducedCopy.h.
#include "editor/ReducedCopy.h"

#include "editor/ResizeArithmetic.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/PumpEvents.h"

namespace pictorel {
namespace {

constexpr std::int16_t kPreviewWidth = 250; // pixels
constexpr std::int16_t kDerive = -1;
constexpr int kFullZoomPercent = 100;
constexpr double kSlightlySmaller = 0.001;

} // namespace

ReducedCopy::ReducedCopy(Image_Mods& document, PictureFiles& files, ImageConvert& convert)
    : document_(document), files_(files), convert_(convert) {}

QString ReducedCopy::FileName() {
    return document_.GetTempFolder() + QStringLiteral("tmp_preview.jpg");
}

void ReducedCopy::UpdatePreviewImage(PictureSlot slot) {
    const QString intermediate = document_.GetTempFolder() + QStringLiteral("tmp_preview0.jpg");
    bool showsPart = false;
    CarryOn([&] { showsPart = document_.Views(slot).Zoom() * 100 > kFullZoomPercent; });
    if (showsPart) {
        ConvertVisiblePart(slot, intermediate);
    } else {
        ConvertWholePicture(slot, intermediate);
    }
    CarryOn([] { PumpEvents(); }, [&] { document_.FileSystem.Delete(intermediate); });
}

void ReducedCopy::ConvertWholePicture(PictureSlot slot, const QString& intermediate) {
    CarryOn(
        [&] {
            const PictureSize size = SplitSize(ComputeResizeSize(
                document_.ImageWidth(0), document_.ImageHeight(0), kPreviewWidth, kDerive, false, 0));
            convert_.SetOutputSize(size.width, size.height);
        },
        [&] { files_.SaveImageFile(slot, intermediate, QStringLiteral("JPG")); },
        [&] { convert_.Convert(intermediate.toStdString(), FileName().toStdString()); });
}

void ReducedCopy::ConvertVisiblePart(PictureSlot slot, const QString& intermediate) {
    PixelArray part;
    std::int16_t width = 0;
    std::int16_t height = 0;
    CarryOn([&] { part = document_.Views(slot).CopyAsShown(); },
            [&] { document_.ImageCodec->Write(part, intermediate.toStdString(), "JPG"); }, //
            [] { PumpEvents(); },
            [&] { width = ToInt16(static_cast<std::int64_t>(document_.ImageUtility->Width(part))); },
            [&] { height = ToInt16(static_cast<std::int64_t>(document_.ImageUtility->Height(part))); },
            [&] {
                const PictureSize size =
                    SplitSize(ComputeResizeSize(width, height, kPreviewWidth, kDerive, false, 0));
                convert_.SetOutputSize(size.width, size.height);
            },
            [&] { convert_.UseWholePicture(); },
            [&] { convert_.Convert(intermediate.toStdString(), FileName().toStdString()); });
}

void ReducedCopy::ShowImagePreview(const QString& fileName, ImageView& view) {
    StopAtFirstError([&] {
        document_.PreviewPixels = PixelArray();
        if (!document_.ImageCodec->Read(fileName.toStdString(), document_.PreviewPixels)) {
            return false;
        }
        view.SetRedraw(false);
        view.Show(document_.PreviewPixels);
        view.FitNew();
        view.SetZoom(view.Zoom() - kSlightlySmaller);
        view.SetRedraw(true);
        return true;
    });
}

} // namespace pictorel
