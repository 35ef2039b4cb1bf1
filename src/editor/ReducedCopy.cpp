// The reduced copy of the picture, see ReducedCopy.h.
#include "editor/ReducedCopy.h"

#include "editor/ImageCodec.h"
#include "editor/ResizeArithmetic.h"
#include "editor/SaveFormats.h"
#include "picture/ImagingError.h"
#include "picture/engine/Geometry.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace pictorel {
namespace {

constexpr std::int16_t kPreviewWidth = 250; // pixels
constexpr int kFullZoomPercent = 100;

// Pixels of the picture beside the part that is shown: as far as the widest blur of a large one reaches.
constexpr int kMargin = 192;

// A moving operation makes at least so many pixels of the part that is shown, where it has them.
constexpr double kPixelsWithin = 600.0 * 400;

bool Same(const engine::Window& a, const engine::Window& b) {
    return a.left == b.left && a.top == b.top && a.width == b.width && a.height == b.height;
}

double AreaOf(const engine::Window& window) {
    return static_cast<double>(window.width) * window.height;
}

engine::Window WholeOf(const PixelArray& picture) {
    return {0, 0, picture.Width(), picture.Height()};
}

engine::Window Within(const PixelArray& picture, int left, int top, int right, int bottom) {
    left = std::clamp(left, 0, picture.Width());
    top = std::clamp(top, 0, picture.Height());
    return {left, top, std::clamp(right, left, picture.Width()) - left,
            std::clamp(bottom, top, picture.Height()) - top};
}

} // namespace

ReducedCopy::ReducedCopy(Image_Mods& document, PictureFiles& files, EditorObserver*& observer)
    : document_(document), files_(files), observer_(observer) {}

bool ReducedCopy::Source::IsPart() const {
    return !Same(part, WholeOf(whole->Picture()));
}

engine::Area ReducedCopy::Source::PartIn(const PixelArray& copy) const {
    const double across = static_cast<double>(copy.Width()) / around.width;
    const double down = static_cast<double>(copy.Height()) / around.height;
    return {(part.left - around.left) * across, (part.top - around.top) * down, part.width * across,
            part.height * down};
}

void ReducedCopy::UpdatePreviewImage(PictureSlot slot) {
    const QString intermediate = document_.WorkingFile(QStringLiteral("tmp_preview0.jpg"));
    source_.reset();
    ShownPart shown;
    CarryOn([&] { shown = observer_->PartShown(slot); });
    const PixelArray& picture = document_.WorkingPicture(slot);
    if (shown.zoom * 100 > kFullZoomPercent) {
        const engine::Window part =
            Within(picture, shown.left, shown.top, shown.left + shown.width, shown.top + shown.height);
        CarryOn([&] {
            const PixelArray seen = engine::Crop(picture, part);
            CarryOn([&] { document_.ImageCodec->Write(seen, intermediate.toStdString(), "JPG"); });
            Write(picture, part, seen);
        });
    } else {
        // The newest working file mostly holds the picture already and only gets a second name here.
        CarryOn([&] { files_.SaveImageFile(slot, intermediate, QStringLiteral("JPG")); },
                [&] { Write(picture, WholeOf(picture), picture); });
    }
    CarryOn([&] { observer_->PaintPending(); }, [&] { document_.FileSystem.Delete(intermediate); });
}

void ReducedCopy::Write(const PixelArray& picture, const engine::Window& part, const PixelArray& seen) {
    const PictureSize size = SplitSize(ComputeResizeSize(ToInt16(static_cast<std::int64_t>(part.width)),
                                                         ToInt16(static_cast<std::int64_t>(part.height)),
                                                         kPreviewWidth, kDeriveSide, false, 0));
    const std::shared_ptr<PicturePyramid> whole = document_.Pyramids->Of(picture);
    std::shared_ptr<PicturePyramid> pyramid = whole;
    engine::Window around = part;
    if (!Same(part, WholeOf(picture))) {
        around = Within(picture, part.left - kMargin, part.top - kMargin, part.Right() + kMargin,
                        part.Bottom() + kMargin);
        PixelArray cut = engine::Crop(picture, around);
        cut.SetPlaceInPicture({around.left, around.top, std::max(picture.Width(), picture.Height())});
        pyramid = std::make_shared<PicturePyramid>(std::move(cut));
    }
    const double share = AreaOf(part) / AreaOf(around);
    Source source{whole, part, around, FinerCopies(std::move(pyramid), share)};
    const PixelArray reduced =
        source.IsPart() ? FinerCopies(std::make_shared<PicturePyramid>(seen)).Copy(size.width, size.height)
                        : source.copies.Copy(size.width, size.height);
    document_.ImageCodec->SetQuality(kSaveQuality);
    document_.ImageCodec->Write(reduced, FileName().toStdString(), "JPG");
    source_ = std::move(source);
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
    if (source_ && !(source_->IsPart() && row.applyWithin != nullptr)) {
        source_->copies.Of(row.fineness);
    }
}

PixelArray ReducedCopy::Preview(const OperationRow& row, const Values& values) {
    const PixelArray& shown = document_.PreviewPixels;
    if (shown.IsEmpty()) {
        throw ImagingError(ImagingFailure::InvalidValue, "There is no reduced copy.");
    }
    if (!source_) {
        return row.apply(shown, values, document_.BackgroundColour);
    }
    if (source_->IsPart() && row.applyWithin != nullptr) {
        return PreviewWithin(row, values);
    }
    const PixelArray& source = source_->copies.Of(row.fineness);
    const PixelArray result = row.apply(source, values, document_.BackgroundColour);
    return result.SharesPixelsWith(source) ? shown // a neutral value
                                           : Shown(result, source_->PartIn(result));
}

// In the size of the copy that is shown.
PixelArray ReducedCopy::Shown(const PixelArray& result, const engine::Area& area) const {
    const PixelArray& shown = document_.PreviewPixels;
    const bool isWhole = area.width == result.Width() && area.height == result.Height();
    PixelArray reduced = isWhole ? engine::Resize(result, shown.Width(), shown.Height())
                                 : engine::ResizeArea(result, area, shown.Width(), shown.Height());
    reduced.SetReduction(shown.Reduction());
    return reduced;
}

// On one of the whole picture's halves that has enough pixels of the part.
PixelArray ReducedCopy::PreviewWithin(const OperationRow& row, const Values& values) const {
    const engine::Window& part = source_->part;
    const double pixels = AreaOf(part);
    int level = 0;
    while (!source_->whole->Picture().HasAlpha() && pixels > std::ldexp(kPixelsWithin, 2 * (level + 1))) {
        ++level;
    }
    PixelArray picture = source_->whole->Level(level);
    picture.SetReduction(std::ldexp(1.0, -level));
    const auto inCopy = [level](int length) { return std::ldexp(length, -level); };
    const engine::Area area{inCopy(part.left), inCopy(part.top), inCopy(part.width), inCopy(part.height)};
    // As far as the filter that reduces it looks.
    const double reach = 3 * std::max(1.0, area.width / kPreviewWidth) + 1;
    const engine::Window window =
        Within(picture, static_cast<int>(area.left - reach), static_cast<int>(area.top - reach),
               static_cast<int>(std::ceil(area.left + area.width + reach)),
               static_cast<int>(std::ceil(area.top + area.height + reach)));
    const PixelArray result = row.applyWithin(picture, values, document_.BackgroundColour, window);
    return Shown(result, {area.left - window.left, area.top - window.top, area.width, area.height});
}

} // namespace pictorel
