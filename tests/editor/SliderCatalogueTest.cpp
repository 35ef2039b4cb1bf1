// What stands in a slider's value box, and what a slider hands to its operation.
#include "editor/SliderCatalogue.h"

#include <QLocale>
#include <gtest/gtest.h>

namespace pictorel::test {
namespace {

enum Slider {
    kBrightness = 0,
    kContrast = 1,
    kSaturation = 2,
    kEqualize = 9,
    kColorizeRed = 12,
    kColorizeGreen = 13,
    kColorizeBlue = 14,
    kSharpen = 15,
    kZoomBlur = 16,
    kMotionBlur = 17,
    kGaussianBlur = 18,
    kNoise = 19,
    kDiffuse = 20,
    kHalftone = 22,
    kMaximal = 23,
    kEmbossAngle = 24,
    kEmbossAmount = 25,
    kEmbossHeight = 26,
    kSkewVertical = 30,
    kPerspectiveVertical = 31,
    kSkewHorizontal = 32,
    kPerspectiveHorizontal = 33,
};

class ScopedLocale {
  public:
    explicit ScopedLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~ScopedLocale() { QLocale::setDefault(before_); }
    ScopedLocale(const ScopedLocale&) = delete;
    ScopedLocale& operator=(const ScopedLocale&) = delete;

  private:
    QLocale before_;
};

struct TextCase {
    int slider;
    std::int32_t value;
    const char* text;
};

void ExpectTexts(std::initializer_list<TextCase> cases) {
    for (const TextCase& c : cases) {
        EXPECT_EQ(SliderValueText(c.slider, c.value).toStdString(), c.text)
            << SliderCatalogue()[static_cast<std::size_t>(c.slider)].caption << " at " << c.value;
    }
}

TEST(SliderValueText, SaysWhatTheOperationGets) {
    const ScopedLocale locale(QLocale::c());
    ExpectTexts({
        {kBrightness, -255, "-255"},   {kContrast, 100, "1.00"},
        {kContrast, 10, "0.10"},       {kSaturation, -7, "-0.07"},
        {kSaturation, 0, "0.00"},      {kSaturation, -100, "-1.00"},
        {kEqualize, 500, "5.00"},      {kSharpen, -100, "100%"},
        {kSharpen, 37, "37%"},         {kZoomBlur, 50, "250%"},
        {kMotionBlur, 0, "0%"},        {kMotionBlur, 1, "2%"}, // halves to even
        {kMotionBlur, 3, "8%"},        {kMotionBlur, 5, "12%"},
        {kMotionBlur, 7, "18%"},       {kMotionBlur, 40, "100%"},
        {kGaussianBlur, 10, "100%"},   {kNoise, 50, "100"},
        {kDiffuse, 4, "4%"},           {kHalftone, 4, "0.0"},
        {kHalftone, 5, "0.1"}, // halves away from zero
        {kHalftone, 25, "0.3"},        {kHalftone, 2500, "25.0"},
        {kEmbossAmount, 1500, "15.0"}, {kMaximal, -5, "-0.1"},
        {kMaximal, -4, "0.0"}, // and not "-0.0"
        {kMaximal, 5, "0.1"},
    });
}

TEST(SliderValueText, EveryHalfTenthGoesAwayFromZero) {
    const ScopedLocale locale(QLocale::c());
    for (int tenths = 0; tenths < 250; ++tenths) {
        const std::string rounded =
            std::to_string((tenths + 1) / 10) + '.' + std::to_string((tenths + 1) % 10);
        ASSERT_EQ(SliderValueText(kHalftone, tenths * 10 + 5).toStdString(), rounded);
    }
}

TEST(SliderValueText, HasTheLocalesDecimalSeparator) {
    {
        const ScopedLocale locale(QLocale(QLocale::German, QLocale::Germany));
        ExpectTexts({{kContrast, 150, "1,50"},
                     {kSaturation, -7, "-0,07"},
                     {kEmbossAmount, 1500, "15,0"},
                     {kSharpen, -50, "50%"},
                     {kBrightness, 255, "255"}});
    }
    // This one has a minus sign of its own, beside which "-255" of another slider would look like a mistake.
    const ScopedLocale locale(QLocale(QLocale::Swedish, QLocale::Sweden));
    ExpectTexts({{kSaturation, -7, "-0,07"}, {kBrightness, -255, "-255"}});
}

TEST(GatherParameters, TakesWhatTheOperationNeeds) {
    const auto valueOf = [](int slider) { return 1000 + slider; };
    struct Case {
        int slider;
        Values parameters;
    };
    const Values colour{1000 + kColorizeRed, 1000 + kColorizeGreen, 1000 + kColorizeBlue};
    const Values emboss{1000 + kEmbossAngle, 1000 + kEmbossAmount, 1000 + kEmbossHeight};
    const auto cases = {
        Case{kBrightness, {1000, 0, 0}},
        Case{kColorizeRed, colour},
        Case{kColorizeGreen, colour},
        Case{kColorizeBlue, colour},
        Case{kEmbossAngle, emboss},
        Case{kEmbossAmount, emboss},
        Case{kEmbossHeight, emboss},
        Case{kSkewVertical, {1000 + kSkewVertical, -1, 0}},
        Case{kSkewHorizontal, {1000 + kSkewHorizontal, 0, 0}},
        Case{kPerspectiveVertical, {1000 + kPerspectiveVertical, -1, 0}},
        Case{kPerspectiveHorizontal, {1000 + kPerspectiveHorizontal, 0, 0}},
    };
    for (const Case& c : cases) {
        const Values gathered = GatherParameters(c.slider, valueOf);
        EXPECT_EQ(gathered.value1, c.parameters.value1) << c.slider;
        EXPECT_EQ(gathered.value2, c.parameters.value2) << c.slider;
        EXPECT_EQ(gathered.value3, c.parameters.value3) << c.slider;
    }
}

TEST(SliderPages, ShowEachShownSliderOnce) {
    std::array<int, kSliderCount> times{};
    for (const SliderPage page : {SliderPage::Adjustments, SliderPage::Filters, SliderPage::Effects}) {
        for (const int slider : SlidersOfPage(page)) {
            if (slider >= 0) {
                ++times.at(static_cast<std::size_t>(slider));
                EXPECT_EQ(SliderCatalogue()[static_cast<std::size_t>(slider)].page, page) << slider;
            }
        }
    }
    for (std::size_t slider = 0; slider < times.size(); ++slider) {
        EXPECT_EQ(times[slider], SliderCatalogue()[slider].shown ? 1 : 0) << slider;
    }
}

} // namespace
} // namespace pictorel::test
