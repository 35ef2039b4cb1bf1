// The rows of the operation table: numbers that are changed, swapped or chosen between on their way to the
// engine, directions, channels, and what is refused.
#include "editor/OperationTable.h"
#include "picture/ImagingError.h"
#include "picture/engine/Filters.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/PointOperations.h"
#include "picture/engine/Stylize.h"
#include "platform/Numbers.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <functional>

namespace pictorel::test {
namespace {

using test::At;
using test::Pixel;
using test::Random;
using test::SamePixels;
using test::Speckled;

constexpr ColourValue kBackground = 0x00112233; // blue 0x11, green 0x22, red 0x33

PixelArray After(const PixelArray& picture, Operation operation, const Values& values) {
    return RowOf(operation).apply(picture, values, kBackground);
}

TEST(OperationTable, NumbersBecomeParameters) {
    struct Case {
        Operation operation;
        Values values;
        std::function<PixelArray(const PixelArray&)> wanted;
    };
    using P = const PixelArray&;
    const auto cases = {
        Case{Operation::SharpenOrBlur, {25}, [](P p) { return engine::GaussianBlur(p, 2.5); }},
        Case{Operation::SharpenOrBlur, {-50}, [](P p) { return engine::UnsharpMask(p, 2); }},
        Case{Operation::SharpenOrBlur, {0}, [](P p) { return p; }},
        Case{Operation::MaximalOrMinimal, {3}, [](P p) { return engine::MinimumFilter(p, 3); }},
        Case{Operation::MaximalOrMinimal, {1}, [](P p) { return engine::MinimumFilter(p, 1); }},
        Case{Operation::MaximalOrMinimal, {0}, [](P p) { return p; }},
        Case{Operation::MaximalOrMinimal, {-3}, [](P p) { return engine::MaximumFilter(p, 3); }},
        Case{Operation::Emboss, {10, 200, 4}, [](P p) { return engine::Emboss(p, 10, 4, 2.0); }},
        Case{Operation::Halftone, {1, 25}, [](P p) { return engine::Halftone(p, 4, 1.25); }},
        Case{Operation::Halftone, {1, 0}, [](P p) { return engine::Halftone(p, 4, 1.0); }},
        Case{Operation::Contrast, {150}, [](P p) { return engine::Contrast(p, 1.5); }},
        Case{Operation::Saturation, {-7}, [](P p) { return engine::Saturation(p, -0.07); }},
        Case{Operation::MotionBlur, {7}, [](P p) { return engine::MotionBlur(p, 90, 7); }},
        Case{Operation::GaussianBlur, {3}, [](P p) { return engine::GaussianBlur(p, 3); }},
        Case{Operation::Diffuse, {30}, [](P p) { return engine::Diffuse(p, 2, 30); }},
        Case{Operation::Colorize, {255, 128, 0}, [](P p) { return engine::Colorize(p, 255, 128, 0); }},
        Case{Operation::Skew, {30, -1}, [](P p) { return engine::Skew(p, true, 30, kBackground); }},
        Case{Operation::Skew, {30, 0}, [](P p) { return engine::Skew(p, false, 30, kBackground); }},
        Case{Operation::Perspective,
             {-30, -1},
             [](P p) { return engine::Perspective(p, true, -30, kBackground); }},
        Case{Operation::Rotate, {45}, [](P p) { return engine::Rotate(p, -45, kBackground); }}, // clockwise
        Case{Operation::Halftone, {0, 0}, [](P p) { return engine::Halftone(p, 4, 1.0); }},
    };
    const PixelArray picture = Random({61, 43});
    for (const Case& c : cases) {
        EXPECT_TRUE(SamePixels(After(picture, c.operation, c.values), c.wanted(picture)))
            << RowOf(c.operation).caption << " " << c.values.value1;
    }
}

// Four pixels that tell every direction and channel apart: 1 2 over 3 4.
PixelArray FourPixels() {
    return test::Draw({2, 2}, [](int x, int y) {
        const auto v = static_cast<std::uint8_t>(10 * (1 + x + 2 * y));
        return Pixel{v, static_cast<std::uint8_t>(v + 1), static_cast<std::uint8_t>(v + 2), 255};
    });
}

// What is set in per cent, or not at all, is meant for 1500 pixels; what is set in pixels stays.
TEST(OperationTable, EffectsGrowWithLargePictures) {
    using P = const PixelArray&;
    const struct {
        Operation operation;
        Values values;
        PixelArray (*wanted)(P picture, double growth);
    } rows[] = {
        {Operation::GaussianBlur, {3}, [](P p, double g) { return engine::GaussianBlur(p, 3 * g); }},
        {Operation::MotionBlur, {8}, [](P p, double g) { return engine::MotionBlur(p, 90, 8 * g); }},
        {Operation::Diffuse,
         {30},
         [](P p, double g) { return engine::Diffuse(p, static_cast<int>(2 * g), 30.0); }},
        {Operation::Emboss, {10, 200, 4}, [](P p, double g) { return engine::Emboss(p, 10, 4 * g, 2.0); }},
        {Operation::Halftone, {1, 0}, [](P p, double g) { return engine::Halftone(p, 4 * g, 1.0); }},
        {Operation::SharpenOrBlur, {30}, [](P p, double) { return engine::GaussianBlur(p, 3); }},
        {Operation::Mosaic, {7}, [](P p, double) { return engine::Mosaic(p, 7); }},
        {Operation::MaximalOrMinimal, {-2}, [](P p, double) { return engine::MaximumFilter(p, 2); }},
    };
    PixelArray part = Speckled({60, 40}); // of a larger picture
    part.SetPlaceInPicture({100, 200, 4500});
    const PixelArray pictures[] = {Speckled({1500, 12}), Speckled({9, 3000}), part};
    const double growths[] = {1, 2, 3};
    for (const auto& row : rows) {
        for (std::size_t i = 0; i < std::size(pictures); ++i) {
            EXPECT_TRUE(SamePixels(After(pictures[i], row.operation, row.values),
                                   row.wanted(pictures[i], growths[i])))
                << RowOf(row.operation).caption << " of picture " << i;
        }
    }
}

TEST(OperationTable, TurnsAndMirrorsTheRightWay) {
    struct Case {
        Operation operation;
        std::array<int, 4> order; // of the numbers 1..4, row by row
    };
    for (const Case& c :
         {Case{Operation::TurnLeft, {2, 4, 1, 3}}, Case{Operation::TurnRight, {3, 1, 4, 2}},
          Case{Operation::FlipVertical, {3, 4, 1, 2}}, Case{Operation::FlipHorizontal, {2, 1, 4, 3}}}) {
        const PixelArray result = After(FourPixels(), c.operation, {});
        const std::array order{At(result, 0, 0)[0] / 10, At(result, 1, 0)[0] / 10, At(result, 0, 1)[0] / 10,
                               At(result, 1, 1)[0] / 10};
        EXPECT_EQ(order, c.order) << RowOf(c.operation).caption;
    }
}

TEST(OperationTable, ReachesTheChannelThatTheCodeNames) {
    struct Case {
        Operation operation;
        Values values;
        Pixel result; // of blue 10, green 11, red 12
    };
    for (const Case& c :
         {Case{Operation::Red, {100}, {10, 11, 112, 255}}, Case{Operation::Green, {100}, {10, 111, 12, 255}},
          Case{Operation::Blue, {100}, {110, 11, 12, 255}},
          Case{Operation::Colorize, {255, 0, 0}, {0, 0, 12, 255}}}) {
        EXPECT_EQ(At(After(FourPixels(), c.operation, c.values), 0, 0), c.result)
            << RowOf(c.operation).caption;
    }
}

TEST(OperationTable, ExposedAreaGetsTheBackground) {
    for (const auto& [operation, values] :
         {std::pair{Operation::Skew, Values{60, 0}}, std::pair{Operation::Perspective, Values{60, -1}},
          std::pair{Operation::Rotate, Values{45}}}) {
        EXPECT_EQ(At(After(Random({40, 30}), operation, values), 0, 0), (Pixel{0x11, 0x22, 0x33, 255}))
            << RowOf(operation).caption;
    }
}

TEST(OperationTable, RefusesWhatTheOperationCannotTake) {
    const PixelArray picture = Random({9, 9});
    for (const Values& values : {Values{-1, 255, 255}, Values{255, 256, 255}, Values{255, 255, -1}}) {
        EXPECT_THROW(After(picture, Operation::Colorize, values), NumberError);
    }
    EXPECT_THROW(After(picture, Operation::Threshold, {300}), NumberError);
    EXPECT_THROW(After(picture, Operation::Threshold, {-1}), NumberError);
    EXPECT_THROW(After(picture, Operation::Resize, {40000, 10}), ImagingError);
    EXPECT_THROW(After(picture, Operation::Resize, {0, 10}), ImagingError);
}

TEST(OperationTable, NoOperationWritesToThePictureItWasGiven) {
    const PixelArray picture = Random({33, 21});
    const PixelArray safe = engine::Crop(picture, {0, 0, 33, 21});
    for (const OperationRow& row : OperationTable()) {
        row.apply(picture, {20, 30, 4}, kBackground);
        ASSERT_TRUE(SamePixels(picture, safe)) << row.caption;
    }
}

} // namespace
} // namespace pictorel::test
