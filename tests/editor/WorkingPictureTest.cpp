// The working picture: units, directions and channels of the calls, and what an error leaves.
#include "editor/FinerCopies.h"
#include "editor/WorkingPicture.h"
#include "picture/ImagingError.h"
#include "picture/engine/Filters.h"
#include "picture/engine/PointOperations.h"
#include "picture/engine/Resample.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <functional>

namespace pictorel::test {
namespace {

using test::At;
using test::Pixel;
using test::Random;
using test::SamePixels;
using Call = std::function<void(ImageTransform&)>;

PixelArray After(const PixelArray& picture, const Call& call) {
    WorkingPicture working;
    working.SetPicture(picture);
    call(working);
    PixelArray result;
    working.CopyPicture(result);
    return result;
}

// Four pixels that tell every direction apart: 1 2 over 3 4.
PixelArray FourPixels() {
    return test::Draw({2, 2}, [](int x, int y) {
        const auto v = static_cast<std::uint8_t>(10 * (1 + x + 2 * y));
        return Pixel{v, static_cast<std::uint8_t>(v + 1), static_cast<std::uint8_t>(v + 2), 255};
    });
}

TEST(WorkingPicture, WorksOnTheFinerCopiesAndKeepsTheSize) {
    const PixelArray picture = Random({60, 40});
    const auto finer = std::make_shared<FinerCopies>(std::make_shared<PicturePyramid>(picture));
    PixelArray copy = engine::Resize(picture, 15, 10);
    copy.SetReduction(0.25);
    copy.SetFiner(finer);
    for (const auto& [call, wanted] :
         {std::pair<Call, PixelArray>{[](ImageTransform& t) { t.Brightness(90); },
                                      engine::Brightness(picture, 90)},
          {[](ImageTransform& t) { t.MaximalFilter(2); }, engine::MaximumFilter(picture, 2)}}) {
        const PixelArray result = After(copy, call);
        EXPECT_TRUE(SamePixels(result, engine::Resize(wanted, 15, 10)));
        EXPECT_EQ(result.Reduction(), 0.25);
    }
    EXPECT_TRUE(SamePixels(After(copy, [](ImageTransform& t) { t.Brightness(0); }), copy));
    EXPECT_TRUE(SamePixels(After(copy, [](ImageTransform& t) { t.MinimalFilter(0); }), copy));
    EXPECT_EQ(After(copy, [](ImageTransform& t) { t.QuarterTurn(1); }).Width(), 10);
}

TEST(WorkingPicture, TurnsAndMirrorsTheRightWay) {
    struct Case {
        const char* name;
        Call call;
        std::array<int, 4> order; // of the numbers 1..4, row by row
    };
    const auto cases = {
        Case{"left", [](ImageTransform& t) { t.QuarterTurn(-1); }, {2, 4, 1, 3}},
        Case{"right", [](ImageTransform& t) { t.QuarterTurn(1); }, {3, 1, 4, 2}},
        Case{"top to bottom", [](ImageTransform& t) { t.Mirror(true); }, {3, 4, 1, 2}},
        Case{"left to right", [](ImageTransform& t) { t.Mirror(false); }, {2, 1, 4, 3}},
    };
    for (const Case& c : cases) {
        const PixelArray result = After(FourPixels(), c.call);
        const std::array order{At(result, 0, 0)[0] / 10, At(result, 1, 0)[0] / 10, At(result, 0, 1)[0] / 10,
                               At(result, 1, 1)[0] / 10};
        EXPECT_EQ(order, c.order) << c.name;
    }
}

TEST(WorkingPicture, ReachesTheChannelThatTheCallNames) {
    struct Case {
        const char* name;
        Call call;
        Pixel result; // of blue 10, green 11, red 12
    };
    const auto cases = {
        Case{"red", [](ImageTransform& t) { t.RedChannel(100); }, {10, 11, 112, 255}},
        Case{"green", [](ImageTransform& t) { t.GreenChannel(100); }, {10, 111, 12, 255}},
        Case{"blue", [](ImageTransform& t) { t.BlueChannel(100); }, {110, 11, 12, 255}},
        Case{"colorize", [](ImageTransform& t) { t.Colorize(255, 0, 0); }, {0, 0, 12, 255}},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(At(After(FourPixels(), c.call), 0, 0), c.result) << c.name;
    }
}

TEST(WorkingPicture, StrengthsHaveTheirUnits) {
    const PixelArray picture = Random({31, 17});
    EXPECT_TRUE(SamePixels(After(picture, [](ImageTransform& t) { t.Blur(25); }),
                           engine::GaussianBlur(picture, 2.5)));
    EXPECT_TRUE(SamePixels(After(picture, [](ImageTransform& t) { t.GaussianBlur(3); }),
                           engine::GaussianBlur(picture, 3)));
    EXPECT_TRUE(SamePixels(After(picture, [](ImageTransform& t) { t.Sharpen(50); }),
                           engine::UnsharpMask(picture, 2)));
}

TEST(WorkingPicture, ExposedAreaGetsTheBackground) {
    constexpr ColourValue kBackground = 0x00112233; // blue 0x11, green 0x22, red 0x33
    const PixelArray picture = Random({40, 30});
    const auto calls = {
        Call([](ImageTransform& t) { t.Skew(false, 60); }),
        Call([](ImageTransform& t) { t.Perspective(true, 60); }),
        Call([](ImageTransform& t) { t.Rotate(45, kBackground); }),
    };
    for (const Call& call : calls) {
        const PixelArray result = After(picture, [&](ImageTransform& t) {
            t.SetBackgroundColour(kBackground);
            call(t);
        });
        EXPECT_EQ(At(result, 0, 0), (Pixel{0x11, 0x22, 0x33, 255}));
    }
}

TEST(WorkingPicture, AnErrorLeavesThePictureAsItWas) {
    const PixelArray picture = Random({9, 9});
    WorkingPicture working;
    working.SetPicture(picture);
    EXPECT_THROW(working.Resize(40000, 10, 0, 0), ImagingError);
    EXPECT_THROW(working.Resize(0, 10, 0, 0), ImagingError);
    PixelArray after;
    working.CopyPicture(after);
    EXPECT_TRUE(after.SharesPixelsWith(picture));
}

TEST(WorkingPicture, NeverWritesToThePictureItWasGiven) {
    const PixelArray picture = Random({33, 21});
    const PixelArray safe = test::Crop(picture, 0, 0, {33, 21});
    After(picture, [](ImageTransform& t) {
        t.Brightness(30);
        t.Mirror(true);
        t.Noise(50, false);
    });
    EXPECT_TRUE(SamePixels(picture, safe));
}

} // namespace
} // namespace pictorel::test
