// What holds for all operations and all sliders alike, from the table down to the pixels.
#include "editor/OperationTable.h"
#include "editor/SliderCatalogue.h"
#include "picture/MadeDetails.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

namespace pictorel::test {
namespace {

using test::Alpha;
using test::Random;
using test::SamePixels;
using test::Size;

constexpr ColourValue kBackground = 0x00FFFFFF;

PixelArray After(const PixelArray& picture, const OperationRow& row, const Values& values) {
    return row.apply(picture, values, kBackground);
}

const OperationRow& OperationOf(const SliderRow& slider) {
    return OperationTable()[static_cast<std::size_t>(slider.operation)];
}

// Parameters as slider i gives them while the others stand at their defaults.
Values ParametersAt(int slider, std::int32_t value) {
    return GatherParameters(slider, [=](int other) {
        return other == slider ? value : SliderCatalogue()[static_cast<std::size_t>(other)].defaultValue;
    });
}

TEST(EverySlider, ChangesNothingAtItsDefault) {
    for (const Alpha alpha : {Alpha::None, Alpha::Random}) {
        const PixelArray picture = Random({61, 47}, alpha);
        for (int i = 0; i < kSliderCount; ++i) {
            const SliderRow& slider = SliderCatalogue()[static_cast<std::size_t>(i)];
            if (slider.shown) {
                EXPECT_TRUE(SamePixels(
                    After(picture, OperationOf(slider), ParametersAt(i, slider.defaultValue)), picture))
                    << slider.caption;
            }
        }
    }
}

TEST(EverySlider, DoesSomethingAtItsEnds) {
    const PixelArray picture = Random({61, 47});
    for (int i = 0; i < kSliderCount; ++i) {
        const SliderRow& slider = SliderCatalogue()[static_cast<std::size_t>(i)];
        for (const int end : {slider.minimum, slider.maximum}) {
            const bool fullTurn = slider.operation == Operation::Hue || slider.operation == Operation::Rotate;
            const bool noWeight = slider.operation == Operation::Equalize && end == 0;
            if (end != slider.defaultValue && !fullTurn && !noWeight) {
                EXPECT_FALSE(SamePixels(After(picture, OperationOf(slider), ParametersAt(i, end)), picture))
                    << slider.caption << " at " << end;
            }
        }
    }
}

TEST(EverySlider, WorksOnPicturesOfAnyShape) {
    for (const Size size : {Size{1, 1}, Size{2, 2}, Size{1, 37}, Size{37, 1}, Size{23, 5}}) {
        for (const double reduction : {1.0, 0.0371}) {
            PixelArray picture = Random(size, Alpha::Random);
            picture.SetReduction(reduction);
            for (int i = 0; i < kSliderCount; ++i) {
                const SliderRow& slider = SliderCatalogue()[static_cast<std::size_t>(i)];
                for (const int value :
                     {slider.minimum, (slider.minimum + slider.maximum) / 3, slider.maximum}) {
                    const PixelArray result = After(picture, OperationOf(slider), ParametersAt(i, value));
                    EXPECT_EQ(result.Width(), size.width) << slider.caption;
                    EXPECT_EQ(result.Height(), size.height) << slider.caption;
                }
            }
        }
    }
}

TEST(EveryOperation, CarriesAlongWhatIsNotPixels) {
    PixelArray picture = Random({30, 20}, Alpha::Random);
    picture.SetReduction(0.5);
    picture.SetDetails(MadeDetails());
    for (const OperationRow& row : OperationTable()) {
        const PixelArray result = After(picture, row, {20, 30, 4});
        EXPECT_TRUE(result.HasAlpha()) << row.caption;
        EXPECT_EQ(result.Reduction(), 0.5) << row.caption;
        EXPECT_EQ(result.Details().exif, picture.Details().exif) << row.caption;
        EXPECT_EQ(result.Details().icc, picture.Details().icc) << row.caption;
        EXPECT_NE(result.Details().dotsPerInchX, 0) << row.caption;
    }
}

TEST(EveryOperation, OfAPictureWithoutAlphaHasNone) {
    const PixelArray picture = Random({30, 20});
    for (const OperationRow& row : OperationTable()) {
        const PixelArray result = After(picture, row, {20, 30, 4});
        EXPECT_FALSE(result.HasAlpha()) << row.caption;
        for (int y = 0; y < result.Height(); ++y) {
            for (int x = 0; x < result.Width(); ++x) {
                ASSERT_EQ(test::At(result, x, y)[3], 255) << row.caption << " at " << x << ", " << y;
            }
        }
    }
}

} // namespace
} // namespace pictorel::test
