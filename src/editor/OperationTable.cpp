// The 36 operations, see OperationTable.h.
#include "editor/OperationTable.h"

#include "editor/ImageOperations.h"
#include "platform/CarryOn.h"
#include "platform/Numbers.h"

#include <array>

namespace pictorel {
namespace {

using Transform = ImageTransform;
using Values = OperationParameters;

constexpr double kMotionBlurAngle = 90.0; // upright
constexpr std::int32_t kDiffuseRadius = 2;

double Hundredth(std::int32_t value) {
    return static_cast<double>(value) / 100.0;
}

void SharpenOrBlur(Transform& transform, const Values& v, ColourValue /*background*/) {
    if (v.value1 == 0) {
        CarryOn([&] { transform.Blur(0.0); }, [&] { transform.Sharpen(0.0); });
    }
    if (v.value1 > 0) {
        transform.Blur(v.value1);
    } else {
        transform.Sharpen(-static_cast<double>(v.value1));
    }
}

// The slider's values are one above the filter's sizes on neither side: 1 is a size of its own, see the
// calls.
void MaximalOrMinimal(Transform& transform, const Values& v, ColourValue /*background*/) {
    if (v.value1 == 1) {
        CarryOn([&] { transform.MinimalFilter(0); }, [&] { transform.MaximalFilter(0); });
    }
    if (v.value1 > 1) {
        transform.MinimalFilter(v.value1);
    } else {
        transform.MaximalFilter(-v.value1);
    }
}

constexpr std::array<OperationRow, kOperationCount> kTable{{
    {Operation::Brightness, "brightness",
     [](Transform& t, const Values& v, ColourValue) { t.Brightness(v.value1); }},
    {Operation::Contrast, "contrast",
     [](Transform& t, const Values& v, ColourValue) { t.Contrast(Hundredth(v.value1)); }},
    {Operation::Saturation, "saturation",
     [](Transform& t, const Values& v, ColourValue) { t.Saturation(Hundredth(v.value1)); }},
    {Operation::AutoContrast, "automatic contrast",
     [](Transform& t, const Values&, ColourValue) { t.AutoContrast(); }},
    {Operation::AutoLevels, "automatic levels",
     [](Transform& t, const Values&, ColourValue) { t.AutoLevels(); }},
    {Operation::Gamma, "gamma",
     [](Transform& t, const Values& v, ColourValue) { t.Gamma(Hundredth(v.value1)); }},
    {Operation::Hue, "hue", [](Transform& t, const Values& v, ColourValue) { t.Hue(v.value1); }},
    {Operation::Lightness, "lightness",
     [](Transform& t, const Values& v, ColourValue) { t.Lightness(Hundredth(v.value1)); }},
    {Operation::Red, "red channel",
     [](Transform& t, const Values& v, ColourValue) { t.RedChannel(v.value1); }},
    {Operation::Green, "green channel",
     [](Transform& t, const Values& v, ColourValue) { t.GreenChannel(v.value1); }},
    {Operation::Blue, "blue channel",
     [](Transform& t, const Values& v, ColourValue) { t.BlueChannel(v.value1); }},
    {Operation::Invert, "invert", [](Transform& t, const Values&, ColourValue) { t.Invert(); }},
    {Operation::Equalize, "equalize",
     [](Transform& t, const Values& v, ColourValue) { t.Equalize(Hundredth(v.value1)); }},
    {Operation::Threshold, "threshold",
     [](Transform& t, const Values& v, ColourValue) { t.Threshold(ToByte(v.value1)); }},
    {Operation::Posterize, "posterize",
     [](Transform& t, const Values& v, ColourValue) { t.Posterize(v.value1); }},
    {Operation::Colorize, "colorize",
     [](Transform& t, const Values& v, ColourValue) {
         t.Colorize(ToByte(v.value1), ToByte(v.value2), ToByte(v.value3));
     }},
    {Operation::SharpenOrBlur, "sharpen or blur", SharpenOrBlur},
    {Operation::ZoomBlur, "zoom blur",
     [](Transform& t, const Values& v, ColourValue) { t.ZoomBlur(v.value1); }},
    {Operation::MotionBlur, "motion blur",
     [](Transform& t, const Values& v, ColourValue) { t.MotionBlur(kMotionBlurAngle, v.value1); }},
    {Operation::GaussianBlur, "Gaussian blur",
     [](Transform& t, const Values& v, ColourValue) { t.GaussianBlur(v.value1); }},
    {Operation::MaximalOrMinimal, "maximal or minimal filter", MaximalOrMinimal},
    {Operation::Noise, "noise", [](Transform& t, const Values& v, ColourValue) { t.Noise(v.value1, false); }},
    {Operation::Diffuse, "diffuse",
     [](Transform& t, const Values& v, ColourValue) { t.Diffuse(kDiffuseRadius, v.value1); }},
    {Operation::Emboss, "emboss",
     [](Transform& t, const Values& v, ColourValue) { t.Emboss(v.value1, v.value3, Hundredth(v.value2)); }},
    {Operation::Mosaic, "mosaic",
     [](Transform& t, const Values& v, ColourValue) { t.Mosaic(v.value1, false); }},
    {Operation::Halftone, "halftone",
     [](Transform& t, const Values& v, ColourValue) { t.Halftone(v.value1, Hundredth(v.value2) + 1); }},
    {Operation::FlipVertical, "flip top to bottom",
     [](Transform& t, const Values&, ColourValue) { t.Mirror(true); }},
    {Operation::FlipHorizontal, "flip left to right",
     [](Transform& t, const Values&, ColourValue) { t.Mirror(false); }},
    {Operation::Rotate, "rotate by an angle",
     [](Transform& t, const Values& v, ColourValue background) { t.Rotate(v.value1, background); }},
    {Operation::Reproduce, "reproduce",
     [](Transform& t, const Values& v, ColourValue) { t.Reproduce(v.value1); }},
    {Operation::Skew, "skew",
     [](Transform& t, const Values& v, ColourValue) { t.Skew(v.value2 != 0, v.value1); }},
    {Operation::Twirl, "twirl", [](Transform& t, const Values& v, ColourValue) { t.Twirl(v.value1); }},
    {Operation::Perspective, "perspective",
     [](Transform& t, const Values& v, ColourValue) { t.Perspective(v.value2 != 0, v.value1); }},
    {Operation::TurnLeft, "quarter turn to the left",
     [](Transform& t, const Values&, ColourValue) { t.QuarterTurn(-1); }},
    {Operation::TurnRight, "quarter turn to the right",
     [](Transform& t, const Values&, ColourValue) { t.QuarterTurn(1); }},
    {Operation::Resize, "resize",
     [](Transform& t, const Values& v, ColourValue background) {
         t.Resize(v.value1, v.value2, 0, background);
     }},
}};

constexpr bool CodesAreDense() {
    for (int i = 0; i < kOperationCount; ++i) {
        if (static_cast<int>(kTable[static_cast<std::size_t>(i)].code) != i) {
            return false;
        }
    }
    return true;
}
static_assert(static_cast<std::int32_t>(Operation::Resize) == kResizeOperation);
static_assert(CodesAreDense(), "row i of the table is operation code i");

} // namespace

std::span<const OperationRow, kOperationCount> OperationTable() noexcept {
    return kTable;
}

} // namespace pictorel
