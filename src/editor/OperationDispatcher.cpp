// Runs one operation, see OperationDispatcher.h.
#include "editor/OperationDispatcher.h"

#include "platform/CarryOn.h"

#include <utility>

namespace pictorel {

OperationDispatcher::OperationDispatcher(Image_Mods& document, ProgressBar& progressBar,
                                         PreviewView previewView)
    : document_(document), progressBar_(progressBar), previewView_(std::move(previewView)) {}

void OperationDispatcher::ApplyImageOperation(PictureSlot slot, std::int32_t code, bool previewMode,
                                              std::int32_t value1, std::int32_t value2, std::int32_t value3) {
    const auto progress = [this](int value) {
        progressBar_.setValue(value);
        progressBar_.RepaintNow();
    };
    CarryOn(
        [&] {
            document_.Transforms(slot).SetPicture(previewMode ? document_.PreviewPixels
                                                              : document_.ImagePixels);
        },
        [&] { progress(2); },
        [&] {
            if (code >= 0 && code < kOperationCount) {
                const ColourValue background = document_.Views(slot).BackgroundColour();
                OperationTable()[static_cast<std::size_t>(code)].perform(
                    document_.Transforms(slot), {value1, value2, value3}, background);
            }
        },
        [&] { progress(3); },
        [&] {
            ImageTransform& transform = document_.Transforms(slot);
            if (previewMode) {
                ImageView& view = previewView_();
                ShowResult(transform, view);
                view.Fit();
            } else {
                ShowResult(transform, document_.Views(slot));
            }
        },
        [&] {
            // The working picture is what gets saved: a preview must not stay there in its place.
            if (previewMode) {
                document_.Transforms(slot).SetPicture(document_.ImagePixels);
            }
        },
        [&] { document_.ImageModified(slot) = true; }, //
        [&] { progress(4); });
}

void OperationDispatcher::ShowResult(ImageTransform& transform, ImageView& view) {
    CarryOn([&] { view.SetRedraw(false); },
            [&] {
                PixelArray result;
                transform.CopyPicture(result);
                view.Show(result);
            },
            [&] {
                if (transform.HasSecondPlane()) {
                    PixelArray plane;
                    transform.CopySecondPlane(plane);
                    view.ShowSecondPlane(plane);
                }
            },
            [&] { view.SetRedraw(true); });
}

} // namespace pictorel
