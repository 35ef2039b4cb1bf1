// The table of the 34 adjustment sliders, see SliderCatalogue.h.
#include "editor/SliderCatalogue.h"

#include "platform/Numbers.h"

#include <QLocale>

#include <cmath>
#include <cstdlib>

namespace pictorel {
namespace {

using enum SliderPage;
using enum ValueText;
using enum Gathering;

constexpr std::array<SliderRow, kSliderCount> kCatalogue{{
    {Adjustments, 1, "Brightness", true, -255, 255, 0, 27, Integer, Operation::Brightness},
    {Adjustments, 1, "Contrast", true, 10, 190, 100, 10, Hundredths, Operation::Contrast},
    {Adjustments, 1, "Saturation", true, -100, 100, 0, 10, Hundredths, Operation::Saturation},
    {Adjustments, 1, "Gamma", true, 0, 200, 100, 12, Hundredths, Operation::Gamma},
    {Adjustments, 1, "Hue", true, -360, 360, 0, 33, Integer, Operation::Hue},
    {Adjustments, 1, "Lightness", true, -100, 100, 0, 10, Hundredths, Operation::Lightness},
    {Adjustments, 1, "Red", true, -255, 255, 0, 27, Integer, Operation::Red},
    {Adjustments, 1, "Green", true, -255, 255, 0, 27, Integer, Operation::Green},
    {Adjustments, 1, "Blue", true, -255, 255, 0, 27, Integer, Operation::Blue},
    {Effects, 1, "Equalize", false, 0, 500, 100, 28, Hundredths, Operation::Equalize},
    {Effects, 1, "Threshold", false, 0, 255, 128, 15, Integer, Operation::Threshold},
    {Effects, 1, "Posterize", false, 2, 32, 32, 2, Integer, Operation::Posterize},
    {Adjustments, 1, "Colorize (R)", true, 0, 255, 255, 15, Integer, Operation::Colorize, Triple, 12},
    {Adjustments, 1, "Colorize (G)", true, 0, 255, 255, 15, Integer, Operation::Colorize, Triple, 12},
    {Adjustments, 1, "Colorize (B)", true, 0, 255, 255, 15, Integer, Operation::Colorize, Triple, 12},
    {Filters, 2, "Sharpen", true, -100, 100, 0, 10, MagnitudePercent, Operation::SharpenOrBlur},
    {Filters, 2, "Zoom Blur", true, 0, 50, 0, 2, Times5Percent, Operation::ZoomBlur},
    {Filters, 2, "Motion Blur", true, 0, 40, 0, 2, Times2p5Percent, Operation::MotionBlur},
    {Filters, 2, "Gaussian Blur", true, 0, 10, 0, 1, Times10Percent, Operation::GaussianBlur},
    {Filters, 2, "Noise", true, 0, 50, 0, 2, Times2, Operation::Noise},
    {Filters, 2, "Diffuse", true, 0, 100, 0, 4, Percent, Operation::Diffuse},
    {Filters, 2, "Mosaic", true, 0, 50, 0, 2, Integer, Operation::Mosaic},
    {Filters, 2, "Halftone", false, 0, 2500, 0, 100, Tenths, Operation::Halftone},
    {Filters, 2, "Maximal", true, -5, 5, 0, 1, Tenths, Operation::MaximalOrMinimal},
    {Filters, 2, "Emb.Angle", false, 0, 360, 0, 18, Integer, Operation::Emboss, Triple, 24},
    {Filters, 2, "Emb.Amount", false, 0, 1500, 300, 75, Tenths, Operation::Emboss, Triple, 24},
    {Filters, 2, "Emb.Height", false, 0, 15, 4, 1, Integer, Operation::Emboss, Triple, 24},
    {Effects, 3, "Rotate", true, 0, 360, 0, 20, Integer, Operation::Rotate},
    {Effects, 3, "Reproduce", true, 1, 32, 1, 2, Integer, Operation::Reproduce},
    {Effects, 3, "Twirl", true, -360, 360, 0, 45, Integer, Operation::Twirl},
    {Effects, 3, "Skew (V)", true, -90, 90, 0, 10, Integer, Operation::Skew, Vertical},
    {Effects, 3, "Perspective (V)", true, -90, 90, 0, 10, Integer, Operation::Perspective, Vertical},
    {Effects, 3, "Skew (H)", true, -90, 90, 0, 10, Integer, Operation::Skew, Horizontal},
    {Effects, 3, "Perspective (H)", true, -90, 90, 0, 10, Integer, Operation::Perspective, Horizontal},
}};

constexpr bool RowsAreSound() {
    for (int i = 0; i < kSliderCount; ++i) {
        const SliderRow& row = kCatalogue[static_cast<std::size_t>(i)];
        const bool inRange = row.minimum <= row.defaultValue && row.defaultValue <= row.maximum;
        const bool triple = (row.gathering == Triple) == (row.firstOfTriple >= 0) &&
                            (row.firstOfTriple < 0 || (row.firstOfTriple <= i && i < row.firstOfTriple + 3));
        const int group = i <= 14 ? 1 : i <= 26 ? 2 : 3;
        if (!inRange || !triple || row.tickSpacing <= 0 || row.resetGroup != group) {
            return false;
        }
    }
    return true;
}
static_assert(RowsAreSound(),
              "ranges hold their defaults, triples their sliders, groups are 0..14, 15..26, 27..33");

constexpr std::array kAdjustments{0, 1, 2, 3, 4, 5, -1, 6, 7, 8, -1, 12, 13, 14};
constexpr std::array kFilters{15, 16, 17, 18, 19, 20, 21, 23};
constexpr std::array kEffects{27, 28, 29, 30, 32, 31, 33};

QString Fixed(double value, int decimals) {
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    const double scale = std::pow(10.0, decimals);
    // Halves away from zero, and no "-0.0".
    const double rounded = std::round(value * scale) / scale + 0.0;
    QString text = locale.toString(rounded, 'f', decimals);
    return text.replace(locale.negativeSign(), QStringLiteral("-"));
}

QString Whole(std::int32_t value, bool percent) {
    return QString::number(value) + (percent ? QStringLiteral("%") : QString());
}

} // namespace

std::span<const SliderRow, kSliderCount> SliderCatalogue() noexcept {
    return kCatalogue;
}

std::span<const int> SlidersOfPage(SliderPage page) noexcept {
    switch (page) {
        case Adjustments:
            return kAdjustments;
        case Filters:
            return kFilters;
        case Effects:
            break;
    }
    return kEffects;
}

QString SliderValueText(int slider, std::int32_t value) {
    switch (kCatalogue.at(static_cast<std::size_t>(slider)).text) {
        case Integer:
            return Whole(value, false);
        case Hundredths:
            return Fixed(value / 100.0, 2);
        case Tenths:
            return Fixed(value / 100.0, 1);
        case Percent:
            return Whole(value, true);
        case MagnitudePercent:
            return Whole(std::abs(value), true);
        case Times5Percent:
            return Whole(value * 5, true);
        case Times2p5Percent:
            return Whole(RoundHalfEven(value * 2.5), true);
        case Times10Percent:
            return Whole(value * 10, true);
        case Times2:
            break;
    }
    return Whole(value * 2, false);
}

Values GatherParameters(int slider, const std::function<std::int32_t(int)>& valueOf) {
    const SliderRow& row = kCatalogue.at(static_cast<std::size_t>(slider));
    if (row.gathering == Triple) {
        return {valueOf(row.firstOfTriple), valueOf(row.firstOfTriple + 1), valueOf(row.firstOfTriple + 2)};
    }
    constexpr std::int32_t kTrue = -1;
    return {valueOf(slider), row.gathering == Vertical ? kTrue : 0, 0};
}

} // namespace pictorel
