// The 36 operations, see OperationTable.h.
#include "editor/OperationTable.h"

#include "picture/ImagingError.h"
#include "picture/engine/Filters.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/HistogramOperations.h"
#include "picture/engine/PointOperations.h"
#include "picture/engine/Resample.h"
#include "picture/engine/Stylize.h"
#include "platform/Numbers.h"

#include <array>

namespace pictorel {
namespace {

using engine::AddToChannels;
using Picture = const PixelArray&;
using V = const Values&;
using Colour = ColourValue;

constexpr double kBlurUnit = 10.0;        // of the slider: one pixel of standard deviation
constexpr double kSharpenUnit = 25.0;     // of the slider: amount 1
constexpr double kMotionBlurAngle = 90.0; // upright
constexpr std::int32_t kDiffuseRadius = 2;

double Hundredth(std::int32_t value) {
    return static_cast<double>(value) / 100.0;
}

// Towards "Blur" the picture is blurred, towards "Sharpen" sharpened by the number's size.
PixelArray SharpenOrBlur(Picture p, V v, Colour /*background*/) {
    return v.value1 > 0 ? engine::GaussianBlur(p, v.value1 / kBlurUnit)
                        : engine::UnsharpMask(p, -v.value1 / kSharpenUnit);
}

// The darkest of a square begins at 2: 1 is the brightest of size -1, which is the darkest of size 1.
PixelArray MaximalOrMinimal(Picture p, V v, Colour /*background*/) {
    return v.value1 > 1 ? engine::MinimumFilter(p, v.value1) : engine::MaximumFilter(p, -v.value1);
}

using Window = const engine::OptionalWindow&;

PixelArray ZoomBlur(Picture p, V v, Colour /*background*/, Window window) {
    return engine::ZoomBlur(p, v.value1, window);
}
PixelArray Rotate(Picture p, V v, Colour background, Window window) {
    return engine::Rotate(p, v.value1, background, window);
}
PixelArray Reproduce(Picture p, V v, Colour /*background*/, Window window) {
    return engine::Reproduce(p, v.value1, window);
}
PixelArray Skew(Picture p, V v, Colour background, Window window) {
    return engine::Skew(p, v.value2 != 0, v.value1, background, window);
}
PixelArray Twirl(Picture p, V v, Colour background, Window window) {
    return engine::Twirl(p, v.value1, background, window);
}
PixelArray Perspective(Picture p, V v, Colour background, Window window) {
    return engine::Perspective(p, v.value2 != 0, v.value1, background, window);
}

template <auto kApplyWithin>
PixelArray Everywhere(Picture p, V v, Colour background) {
    return kApplyWithin(p, v, background, {});
}

using enum Fineness;

constexpr std::array<OperationRow, kOperationCount> kTable{{
    {Operation::Brightness, "Brightness", Ordinary,
     [](Picture p, V v, Colour) { return engine::Brightness(p, v.value1); }},
    {Operation::Contrast, "Contrast", Ordinary,
     [](Picture p, V v, Colour) { return engine::Contrast(p, Hundredth(v.value1)); }},
    {Operation::Saturation, "Saturation", Ordinary,
     [](Picture p, V v, Colour) { return engine::Saturation(p, Hundredth(v.value1)); }},
    {Operation::AutoContrast, "Auto Contrast", Ordinary,
     [](Picture p, V, Colour) { return engine::AutoContrast(p); }},
    {Operation::AutoLevels, "Auto Levels", Ordinary,
     [](Picture p, V, Colour) { return engine::AutoLevels(p); }},
    {Operation::Gamma, "Gamma", Ordinary,
     [](Picture p, V v, Colour) { return engine::Gamma(p, Hundredth(v.value1)); }},
    {Operation::Hue, "Hue", Ordinary, [](Picture p, V v, Colour) { return engine::Hue(p, v.value1); }},
    {Operation::Lightness, "Lightness", Ordinary,
     [](Picture p, V v, Colour) { return engine::Lightness(p, Hundredth(v.value1)); }},
    {Operation::Red, "Red", Ordinary,
     [](Picture p, V v, Colour) { return AddToChannels(p, v.value1, 0, 0); }},
    {Operation::Green, "Green", Ordinary,
     [](Picture p, V v, Colour) { return AddToChannels(p, 0, v.value1, 0); }},
    {Operation::Blue, "Blue", Ordinary,
     [](Picture p, V v, Colour) { return AddToChannels(p, 0, 0, v.value1); }},
    {Operation::Invert, "Invert", Ordinary, [](Picture p, V, Colour) { return engine::Invert(p); }},
    {Operation::Equalize, "Equalize", Ordinary,
     [](Picture p, V v, Colour) { return engine::Equalize(p, Hundredth(v.value1)); }},
    {Operation::Threshold, "Threshold", Ordinary,
     [](Picture p, V v, Colour) { return engine::Threshold(p, ToByte(v.value1)); }},
    {Operation::Posterize, "Posterize", Ordinary,
     [](Picture p, V v, Colour) { return engine::Posterize(p, v.value1); }},
    {Operation::Colorize, "Colorize", Ordinary,
     [](Picture p, V v, Colour) {
         return engine::Colorize(p, ToByte(v.value1), ToByte(v.value2), ToByte(v.value3));
     }},
    {Operation::SharpenOrBlur, "Sharpen", Ordinary, SharpenOrBlur},
    {Operation::ZoomBlur, "Zoom Blur", Light, Everywhere<ZoomBlur>, ZoomBlur},
    {Operation::MotionBlur, "Motion Blur", Ordinary,
     [](Picture p, V v, Colour) { return engine::MotionBlur(p, kMotionBlurAngle, v.value1); }},
    {Operation::GaussianBlur, "Gaussian Blur", Ordinary,
     [](Picture p, V v, Colour) { return engine::GaussianBlur(p, v.value1); }},
    {Operation::MaximalOrMinimal, "Maximal", Extremes, MaximalOrMinimal},
    {Operation::Noise, "Noise", Grain, [](Picture p, V v, Colour) { return engine::Noise(p, v.value1); }},
    {Operation::Diffuse, "Diffuse", Ordinary,
     [](Picture p, V v, Colour) { return engine::Diffuse(p, kDiffuseRadius, v.value1); }},
    {Operation::Emboss, "Emboss", Ordinary,
     [](Picture p, V v, Colour) { return engine::Emboss(p, v.value1, v.value3, Hundredth(v.value2)); }},
    {Operation::Mosaic, "Mosaic", Ordinary,
     [](Picture p, V v, Colour) { return engine::Mosaic(p, v.value1); }},
    {Operation::Halftone, "Halftone", Ordinary,
     [](Picture p, V v, Colour) { return engine::Halftone(p, v.value1, Hundredth(v.value2) + 1); }},
    {Operation::FlipVertical, "Flip Vertical", Ordinary,
     [](Picture p, V, Colour) { return engine::MirrorTopToBottom(p); }},
    {Operation::FlipHorizontal, "Flip Horizontal", Ordinary,
     [](Picture p, V, Colour) { return engine::MirrorLeftToRight(p); }},
    {Operation::Rotate, "Rotate", Light, Everywhere<Rotate>, Rotate},
    {Operation::Reproduce, "Reproduce", Ordinary, Everywhere<Reproduce>, Reproduce},
    {Operation::Skew, "Skew", Light, Everywhere<Skew>, Skew},
    {Operation::Twirl, "Twirl", Light, Everywhere<Twirl>, Twirl},
    {Operation::Perspective, "Perspective", Light, Everywhere<Perspective>, Perspective},
    {Operation::TurnLeft, "Rotate Left", Ordinary,
     [](Picture p, V, Colour) { return engine::QuarterTurnLeft(p); }},
    {Operation::TurnRight, "Rotate Right", Ordinary,
     [](Picture p, V, Colour) { return engine::QuarterTurnRight(p); }},
    {Operation::Resize, "Resize", Ordinary,
     [](Picture p, V v, Colour) { return engine::Resize(p, v.value1, v.value2); }},
}};

constexpr bool CodesAreDense() {
    for (int i = 0; i < kOperationCount; ++i) {
        if (static_cast<int>(kTable[static_cast<std::size_t>(i)].code) != i) {
            return false;
        }
    }
    return true;
}
static_assert(CodesAreDense(), "row i of the table is operation code i");

} // namespace

std::span<const OperationRow, kOperationCount> OperationTable() noexcept {
    return kTable;
}

const OperationRow& RowOf(Operation operation) noexcept {
    return kTable[static_cast<std::size_t>(operation)];
}

} // namespace pictorel
