// The reduced copy of the picture, see ReducedCopy.h.
#include "editor/ReducedCopy.h"

#include "editor/ImageCodec.h"
#include "editor/ResizeArithmetic.h"
#include "editor/SaveFormats.h"
#include "picture/ImagingError.h"
#include "picture/engine/Resample.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"

#include <algorithm>
#include <cstring>

namespace pictorel {
namespace {

constexpr std::int16_t kPreviewWidth = 250; // pixels
constexpr int kFullZoomPercent = 100;

} // namespace

PixelArray CutOut(const PixelArray& picture, int left, int top, int width, int height) {
    const int right = std::min(left + width, picture.Width());
    const int bottom = std::min(top + height, picture.Height());
    left = std::max(left, 0);
    top = std::max(top, 0);
    if (left >= right || top >= bottom) {
        throw ImagingError(ImagingFailure::InvalidValue, "No part of the picture is shown.");
    }
    PixelArray part = PixelArray::Like(picture, right - left, bottom - top);
    std::uint8_t* const rows = part.WritableRows();
    for (int y = top; y < bottom; ++y) {
        std::memcpy(rows + (y - top) * part.Stride(), picture.Row(y) + PixelArray::kComponents * left,
                    part.RowBytes());
    }
    return part;
}

ReducedCopy::ReducedCopy(Image_Mods& document, PictureFiles& files, EditorObserver*& observer)
    : document_(document), files_(files), observer_(observer) {}

void ReducedCopy::UpdatePreviewImage(PictureSlot slot) {
    const QString intermediate = document_.WorkingFile(QStringLiteral("tmp_preview0.jpg"));
    finer_.reset();
    ShownPart part;
    CarryOn([&] { part = observer_->PartShown(slot); });
    if (part.zoom * 100 > kFullZoomPercent) {
        CarryOn([&] { WritePart(slot, part, intermediate); });
    } else {
        // The newest working file mostly holds the picture already and only gets a second name here.
        CarryOn([&] { files_.SaveImageFile(slot, intermediate, QStringLiteral("JPG")); },
                [&] { WriteReduced(document_.WorkingPicture(slot)); });
    }
    CarryOn([&] { observer_->PaintPending(); }, [&] { document_.FileSystem.Delete(intermediate); });
}

void ReducedCopy::WritePart(PictureSlot slot, const ShownPart& part, const QString& intermediate) {
    const PixelArray shown =
        CutOut(document_.WorkingPicture(slot), part.left, part.top, part.width, part.height);
    CarryOn([&] { document_.ImageCodec->Write(shown, intermediate.toStdString(), "JPG"); });
    WriteReduced(shown);
}

void ReducedCopy::WriteReduced(const PixelArray& picture) {
    const PictureSize size = SplitSize(ComputeResizeSize(ToInt16(static_cast<std::int64_t>(picture.Width())),
                                                         ToInt16(static_cast<std::int64_t>(picture.Height())),
                                                         kPreviewWidth, kDeriveSide, false, 0));
    FinerCopies finer(document_.Pyramids->Of(picture));
    const PixelArray reduced = finer.Copy(size.width, size.height);
    document_.ImageCodec->SetQuality(kSaveQuality);
    document_.ImageCodec->Write(reduced, FileName().toStdString(), "JPG");
    finer_ = std::move(finer);
}

bool ReducedCopy::ShowImagePreview(const QString& fileName) {
    return StopAtFirstError([&] {
        document_.PreviewPixels = PixelArray();
        if (!document_.ImageCodec->Read(fileName.toStdString(), document_.PreviewPixels)) {
            return false;
        }
        observer_->PreviewLoaded();
        return true;
    });
}

void ReducedCopy::Prepare(const OperationRow& row) {
    if (finer_) {
        finer_->Of(row.fineness);
    }
}

PixelArray ReducedCopy::Preview(const OperationRow& row, const Values& values) {
    const PixelArray& shown = document_.PreviewPixels;
    if (shown.IsEmpty()) {
        throw ImagingError(ImagingFailure::InvalidValue, "There is no reduced copy.");
    }
    if (!finer_) {
        return row.apply(shown, values, document_.BackgroundColour);
    }
    const PixelArray& source = finer_->Of(row.fineness);
    const PixelArray result = row.apply(source, values, document_.BackgroundColour);
    if (result.SharesPixelsWith(source)) {
        return shown; // a neutral value
    }
    PixelArray reduced = engine::Resize(result, shown.Width(), shown.Height());
    reduced.SetReduction(shown.Reduction());
    return reduced;
}

} // namespace pictorel
