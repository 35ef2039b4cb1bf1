// How true a slider's preview is, see PreviewTruth.h.
#include "measure/PreviewTruth.h"

#include "editor/SliderCatalogue.h"
#include "measure/StructuralSimilarity.h"
#include "picture/ImagingError.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/Resample.h"

#include <utility>

namespace pictorel::measure {
namespace {

constexpr ColourValue kBackground = 0x00FFFFFF;

Values ValuesOf(int slider, std::int32_t value) {
    return GatherParameters(slider, [=](int other) {
        return other == slider ? value : SliderCatalogue()[static_cast<std::size_t>(other)].defaultValue;
    });
}

const OperationRow& OperationOf(int slider) {
    return RowOf(SliderCatalogue()[static_cast<std::size_t>(slider)].operation);
}

} // namespace

// Shows the part, and nothing else.
class PreviewTruth::Screen : public EditorObserver {
  public:
    explicit Screen(ShownPart part) : part_(part) {}
    ShownPart PartShown(PictureSlot /*slot*/) const override { return part_; }

  private:
    ShownPart part_;
};

class PreviewTruth::Silence : public Messages {
  public:
    void Show(const QString& text, const QString& /*title*/, MessageIcon /*icon*/) override {
        throw ImagingError(ImagingFailure::FileAccess, text.toStdString());
    }
    MessageAnswer AskYesNoCancel(const QString& /*text*/, const QString& /*title*/) override {
        return MessageAnswer::Cancel;
    }
};

PreviewTruth::PreviewTruth(PixelArray picture, ShownPart part)
    : silence_(std::make_unique<Silence>()),
      screen_(std::make_unique<Screen>(part)),
      editor_(std::make_unique<Editor>(*silence_)),
      part_(part) {
    editor_->SetObserver(screen_.get());
    editor_->Document.BackgroundColour = kBackground;
    editor_->Document.ImageWidth(kSlot) = static_cast<std::int16_t>(picture.Width());
    editor_->Document.ImageHeight(kSlot) = static_cast<std::int16_t>(picture.Height());
    editor_->Document.WorkingPicture(kSlot) = picture;
    editor_->Document.ImagePixels = std::move(picture);
    editor_->ReducedCopy.UpdatePreviewImage(kSlot);
    if (!editor_->ReducedCopy.ShowImagePreview(editor_->ReducedCopy.FileName())) {
        throw ImagingError(ImagingFailure::FileAccess, "The reduced copy could not be made.");
    }
}

PreviewTruth::~PreviewTruth() = default;

const PixelArray& PreviewTruth::Copy() const noexcept {
    return editor_->Document.PreviewPixels;
}

PixelArray PreviewTruth::AfterSlider(const PixelArray& picture, int slider, std::int32_t value) {
    return OperationOf(slider).apply(picture, ValuesOf(slider, value), kBackground);
}

double PreviewTruth::Of(int slider, std::int32_t value) const {
    return Of(slider, value, AfterSlider(editor_->Document.ImagePixels, slider, value));
}

double PreviewTruth::Of(int slider, std::int32_t value, const PixelArray& committed) const {
    const PixelArray preview = editor_->ReducedCopy.Preview(OperationOf(slider), ValuesOf(slider, value));
    const PixelArray shown = part_.zoom > 1
                                 ? engine::Crop(committed, {part_.left, part_.top, part_.width, part_.height})
                                 : committed;
    return StructuralSimilarity(preview, engine::Resize(shown, preview.Width(), preview.Height()));
}

} // namespace pictorel::measure
