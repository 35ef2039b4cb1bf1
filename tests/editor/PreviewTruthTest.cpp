// Whether previews show what letting the slider go will do: rows that averages over the picture would get
// wrong, of pictures larger and smaller than the copies that previews start from.
#include "editor/SliderCatalogue.h"
#include "measure/PreviewTruth.h"
#include "measure/StructuralSimilarity.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace pictorel::test {
namespace {

using test::Draw;
using test::Pixel;
using test::Size;

// Smooth shades, hard edges, and grain as a photo has it.
PixelArray GrainyScene(Size size) {
    std::mt19937 generator(5);
    return Draw(size, [&](int x, int y) {
        const double u = static_cast<double>(x) / size.width;
        const double v = static_cast<double>(y) / size.height;
        const bool edge = std::fmod(7 * u + 3 * v, 1.0) < 0.3;
        const auto shade = [&](double value) {
            const int grain = static_cast<int>(generator() % 19) - 9;
            return static_cast<std::uint8_t>(
                std::clamp(static_cast<int>(255 * value * (edge ? 0.4 : 0.9)) + grain, 0, 255));
        };
        return Pixel{shade(0.5 + 0.5 * std::sin(9 * u)), shade(v), shade(1 - u * v), 255};
    });
}

struct Row {
    int slider;
    std::int32_t value;
};

void ExpectTrue(const measure::PreviewTruth& truths, const Row& row) {
    const SliderRow& slider = SliderCatalogue()[static_cast<std::size_t>(row.slider)];
    const bool chance = slider.operation == Operation::Noise || slider.operation == Operation::Diffuse;
    EXPECT_GE(truths.Of(row.slider, row.value), chance ? 0.90 : 0.98) << slider.caption << " " << row.value;
}

TEST(PreviewTruth, OfAPictureLargerThanItsFinerCopies) {
    const measure::PreviewTruth truths(GrainyScene({3000, 2000}));
    for (const Row& row : {Row{0, -128}, Row{1, 190}, Row{3, 0}, Row{5, 50}, Row{15, -100}, Row{16, 25},
                           Row{18, 10}, Row{19, 50}, Row{20, 50}, Row{21, 25}, Row{23, -5}, Row{23, 5},
                           Row{27, 45}, Row{28, 8}, Row{29, 360}, Row{30, 45}}) {
        ExpectTrue(truths, row);
    }
}

// What moves pixels brings into the part what lies elsewhere; blocks and grain lie where the picture has
// them; a blur sees what is beside the part.
TEST(PreviewTruth, OfAPartThatIsZoomedInOn) {
    const PixelArray scene = GrainyScene({2000, 1501});
    for (const ShownPart part : {ShownPart{4, 1501, 1203, 250, 180}, ShownPart{1.5, 403, 501, 667, 460},
                                 ShownPart{10, 0, 0, 100, 70}}) {
        const measure::PreviewTruth truths(scene, part);
        for (const Row& row :
             {Row{0, -128}, Row{15, -100}, Row{15, 100}, Row{16, 25}, Row{17, 40}, Row{18, 10}, Row{19, 50},
              Row{20, 50}, Row{21, 23}, Row{23, -5}, Row{23, 5}, Row{27, 45}, Row{27, 90}, Row{28, 8},
              Row{29, 360}, Row{30, 45}, Row{31, -60}, Row{32, 20}, Row{33, 70}}) {
            ExpectTrue(truths, row);
        }
    }
}

TEST(PreviewTruth, OfPicturesAboutAsSmallAsTheCopy) {
    for (const Size size : {Size{400, 300}, Size{120, 90}}) {
        const measure::PreviewTruth truths(GrainyScene(size));
        EXPECT_EQ(truths.Copy().Width(), 250);
        for (const Row& row :
             {Row{0, 127}, Row{18, 5}, Row{19, 25}, Row{20, 100}, Row{21, 12}, Row{23, 2}, Row{29, 180}}) {
            ExpectTrue(truths, row);
        }
    }
}

TEST(PreviewTruth, TheMeasureTellsLikeFromUnlike) {
    const PixelArray scene = GrainyScene({120, 90});
    EXPECT_DOUBLE_EQ(measure::StructuralSimilarity(scene, scene), 1.0);
    EXPECT_GT(measure::StructuralSimilarity(scene, measure::PreviewTruth::AfterSlider(scene, 0, 2)), 0.99);
    EXPECT_LT(measure::StructuralSimilarity(scene, measure::PreviewTruth::AfterSlider(scene, 18, 1)), 0.9);
    EXPECT_LT(measure::StructuralSimilarity(scene, measure::PreviewTruth::AfterSlider(scene, 29, 90)), 0.7);
}

} // namespace
} // namespace pictorel::test
