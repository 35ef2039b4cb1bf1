// The working picture, see WorkingPicture.h.
#include "editor/WorkingPicture.h"

#include "editor/FinerCopies.h"
#include "picture/ImagingError.h"
#include "picture/engine/Filters.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/HistogramOperations.h"
#include "picture/engine/PointOperations.h"
#include "picture/engine/Resample.h"
#include "picture/engine/Stylize.h"

namespace pictorel {
namespace {

constexpr double kBlurUnit = 10.0;    // strength of one pixel of standard deviation
constexpr double kSharpenUnit = 25.0; // strength of amount 1

} // namespace

void WorkingPicture::SetPicture(const PixelArray& picture) {
    picture_ = picture;
    finer_ = picture.Finer();
    // Kept for a reduced copy only: the picture before an edit would take as much memory as the one after.
    asSet_ = finer_ ? picture : PixelArray();
    reduced_ = reducedFrom_ = PixelArray();
}

bool WorkingPicture::IsUntouched() const noexcept {
    return picture_.SharesPixelsWith(asSet_) || (finer_ && finer_->Holds(picture_));
}

const PixelArray& WorkingPicture::Source() const {
    if (picture_.IsEmpty()) {
        throw ImagingError(ImagingFailure::InvalidValue, "There is no picture.");
    }
    return finer_ && IsUntouched() ? finer_->Ordinary() : picture_;
}

const PixelArray& WorkingPicture::LighterSource() const {
    return finer_ && IsUntouched() ? finer_->Lighter() : Source();
}

const PixelArray& WorkingPicture::SourceForExtremes() const {
    return finer_ && IsUntouched() ? finer_->ForExtremes() : Source();
}

const PixelArray& WorkingPicture::SourceOfItsSize() {
    picture_ = Result();
    finer_.reset();
    return picture_;
}

const PixelArray& WorkingPicture::Result() const {
    if (picture_.IsEmpty()) {
        throw ImagingError(ImagingFailure::InvalidValue, "There is no picture.");
    }
    if (!finer_) {
        return picture_;
    }
    if (IsUntouched()) {
        return asSet_;
    }
    if (!reducedFrom_.SharesPixelsWith(picture_)) {
        reduced_ = engine::Resize(picture_, asSet_.Width(), asSet_.Height());
        reduced_.SetReduction(asSet_.Reduction());
        reducedFrom_ = picture_;
    }
    return reduced_;
}

void WorkingPicture::CopyPicture(PixelArray& picture) const {
    picture = Result();
}

void WorkingPicture::CopySecondPlane(PixelArray& plane) const {
    plane = Result(); // the alpha lies in the fourth component of the same array
}

void WorkingPicture::AutoContrast() {
    picture_ = engine::AutoContrast(Source());
}

void WorkingPicture::AutoLevels() {
    picture_ = engine::AutoLevels(Source());
}

void WorkingPicture::Brightness(std::int32_t amount) {
    picture_ = engine::Brightness(Source(), amount);
}

void WorkingPicture::Contrast(double factor) {
    picture_ = engine::Contrast(Source(), factor);
}

void WorkingPicture::Gamma(double gamma) {
    picture_ = engine::Gamma(Source(), gamma);
}

void WorkingPicture::Hue(double degrees) {
    picture_ = engine::Hue(Source(), degrees);
}

void WorkingPicture::Lightness(double amount) {
    picture_ = engine::Lightness(Source(), amount);
}

void WorkingPicture::Saturation(double amount) {
    picture_ = engine::Saturation(Source(), amount);
}

void WorkingPicture::RedChannel(std::int32_t amount) {
    picture_ = engine::AddToChannels(Source(), amount, 0, 0);
}

void WorkingPicture::GreenChannel(std::int32_t amount) {
    picture_ = engine::AddToChannels(Source(), 0, amount, 0);
}

void WorkingPicture::BlueChannel(std::int32_t amount) {
    picture_ = engine::AddToChannels(Source(), 0, 0, amount);
}

void WorkingPicture::Colorize(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    picture_ = engine::Colorize(Source(), red, green, blue);
}

void WorkingPicture::Invert() {
    picture_ = engine::Invert(Source());
}

void WorkingPicture::Equalize(double weight) {
    picture_ = engine::Equalize(Source(), weight);
}

void WorkingPicture::Threshold(std::uint8_t level) {
    picture_ = engine::Threshold(Source(), level);
}

void WorkingPicture::Posterize(std::int32_t levels) {
    picture_ = engine::Posterize(Source(), levels);
}

void WorkingPicture::MinimalFilter(std::int32_t radius) {
    picture_ = engine::MinimumFilter(SourceForExtremes(), radius);
}

void WorkingPicture::MaximalFilter(std::int32_t radius) {
    picture_ = engine::MaximumFilter(SourceForExtremes(), radius);
}

void WorkingPicture::Blur(double strength) {
    picture_ = engine::GaussianBlur(Source(), strength / kBlurUnit);
}

void WorkingPicture::Sharpen(double strength) {
    picture_ = engine::UnsharpMask(Source(), strength / kSharpenUnit);
}

void WorkingPicture::MotionBlur(double degrees, std::int32_t length) {
    picture_ = engine::MotionBlur(Source(), degrees, length);
}

void WorkingPicture::GaussianBlur(std::int32_t sigma) {
    picture_ = engine::GaussianBlur(Source(), sigma);
}

void WorkingPicture::ZoomBlur(double percent) {
    picture_ = engine::ZoomBlur(LighterSource(), percent);
}

void WorkingPicture::Noise(std::int32_t percent, bool /*monochrome*/) {
    picture_ = engine::Noise(LighterSource(), percent);
}

void WorkingPicture::Diffuse(std::int32_t radius, double percent) {
    picture_ = engine::Diffuse(Source(), radius, percent);
}

void WorkingPicture::Emboss(double degrees, std::int32_t height, double amount) {
    picture_ = engine::Emboss(Source(), degrees, height, amount);
}

void WorkingPicture::Mosaic(std::int32_t size, bool /*centred*/) {
    picture_ = engine::Mosaic(Source(), size);
}

void WorkingPicture::Halftone(std::int32_t size, double gain) {
    picture_ = engine::Halftone(Source(), size, gain);
}

void WorkingPicture::Mirror(bool topToBottom) {
    picture_ = topToBottom ? engine::MirrorTopToBottom(Source()) : engine::MirrorLeftToRight(Source());
}

void WorkingPicture::Rotate(double degrees, ColourValue background) {
    picture_ = engine::Rotate(LighterSource(), degrees, background);
}

void WorkingPicture::Resize(std::int32_t width, std::int32_t height, std::int32_t /*method*/,
                            ColourValue /*background*/) {
    picture_ = engine::Resize(SourceOfItsSize(), width, height);
}

void WorkingPicture::Perspective(bool vertical, double degrees) {
    picture_ = engine::Perspective(LighterSource(), vertical, degrees, background_);
}

void WorkingPicture::Skew(bool vertical, double degrees) {
    picture_ = engine::Skew(LighterSource(), vertical, degrees, background_);
}

void WorkingPicture::Twirl(double degrees) {
    picture_ = engine::Twirl(LighterSource(), degrees, background_);
}

void WorkingPicture::Reproduce(std::int32_t count) {
    picture_ = engine::Reproduce(Source(), count);
}

void WorkingPicture::QuarterTurn(std::int32_t direction) {
    picture_ = direction < 0 ? engine::QuarterTurnLeft(SourceOfItsSize())
                             : engine::QuarterTurnRight(SourceOfItsSize());
}

} // namespace pictorel
