// Mirrors and turns by right angles move pixels exactly, on every shape.
#include "picture/ImagingError.h"
#include "picture/engine/Geometry.h"
#include "support/Pictures.h"

#include <cmath>
#include <tuple>

namespace pictorel::engine {
namespace {

using test::At;
using test::Pixel;
using test::Same;
using test::Speckled;

constexpr std::uint32_t kBackground = 0x00112233; // blue 0x11, green 0x22, red 0x33
constexpr Pixel kBackgroundPixel{0x11, 0x22, 0x33, 255};

class TurnsOfShape : public ::testing::TestWithParam<std::tuple<int, int>> {
  protected:
    TurnsOfShape() : picture_(Speckled({std::get<0>(GetParam()), std::get<1>(GetParam())}, true)) {
        Metadata details;
        details.exif = {1, 2, 3};
        details.dotsPerInchX = 300;
        picture_.SetDetails(details);
        picture_.SetReduction(0.5);
    }

    PixelArray picture_;
};

TEST_P(TurnsOfShape, MirrorsPutPixelsOnTheOtherSide) {
    const PixelArray upsideDown = MirrorTopToBottom(picture_);
    const PixelArray reversed = MirrorLeftToRight(picture_);
    const int right = picture_.Width() - 1;
    const int bottom = picture_.Height() - 1;
    for (int y = 0; y <= bottom; ++y) {
        for (int x = 0; x <= right; ++x) {
            ASSERT_EQ(At(upsideDown, x, y), At(picture_, x, bottom - y));
            ASSERT_EQ(At(reversed, x, y), At(picture_, right - x, y));
        }
    }
    EXPECT_TRUE(Same(MirrorTopToBottom(upsideDown), picture_));
    EXPECT_TRUE(Same(MirrorLeftToRight(reversed), picture_));
}

TEST_P(TurnsOfShape, QuarterTurnsBringTheRightCornersUp) {
    const PixelArray left = QuarterTurnLeft(picture_);
    const PixelArray right = QuarterTurnRight(picture_);
    const int width = picture_.Width();
    const int height = picture_.Height();
    ASSERT_EQ(left.Width(), height);
    ASSERT_EQ(left.Height(), width);
    EXPECT_EQ(At(left, 0, 0), At(picture_, width - 1, 0));
    EXPECT_EQ(At(left, height - 1, 0), At(picture_, width - 1, height - 1));
    EXPECT_EQ(At(right, 0, 0), At(picture_, 0, height - 1));
    EXPECT_EQ(At(right, height - 1, 0), At(picture_, 0, 0));
}

TEST_P(TurnsOfShape, TurnsUndoEachOther) {
    EXPECT_TRUE(Same(QuarterTurnRight(QuarterTurnLeft(picture_)), picture_));
    const PixelArray halfTurn = QuarterTurnLeft(QuarterTurnLeft(picture_));
    EXPECT_TRUE(Same(QuarterTurnLeft(QuarterTurnLeft(halfTurn)), picture_));
    EXPECT_TRUE(Same(Rotate(picture_, 180, kBackground), halfTurn));
    EXPECT_TRUE(Same(MirrorLeftToRight(MirrorTopToBottom(picture_)), halfTurn));
}

INSTANTIATE_TEST_SUITE_P(Shapes, TurnsOfShape,
                         ::testing::Values(std::tuple(1, 1), std::tuple(1, 9), std::tuple(9, 1),
                                           std::tuple(2, 2), std::tuple(3, 7), std::tuple(33, 65),
                                           std::tuple(700, 401)));

TEST(RotateByRightAngles, SquareIsAQuarterTurn) {
    const PixelArray picture = Speckled({15, 15});
    EXPECT_TRUE(Same(Rotate(picture, 90, kBackground), QuarterTurnLeft(picture)));
    EXPECT_TRUE(Same(Rotate(picture, -90, kBackground), QuarterTurnRight(picture)));
    EXPECT_TRUE(Same(Rotate(picture, 270 + 720, kBackground), QuarterTurnRight(picture)));
}

TEST(RotateByRightAngles, OblongKeepsItsCanvas) {
    for (const bool hasAlpha : {false, true}) {
        const PixelArray picture = Speckled({7, 3}, hasAlpha);
        const PixelArray turned = Rotate(picture, 90, kBackground);
        const PixelArray quarter = QuarterTurnLeft(picture); // 3 x 7
        const Pixel exposed = hasAlpha ? Pixel{0, 0, 0, 0} : kBackgroundPixel;
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 7; ++x) {
                const bool isCovered = x >= 2 && x < 5;
                EXPECT_EQ(At(turned, x, y), isCovered ? At(quarter, x - 2, y + 2) : exposed);
            }
        }
    }
}

TEST(RotateByRightAngles, UnequalParityDoesNotBlur) {
    const PixelArray picture = Speckled({8, 5});
    const PixelArray turned = Rotate(picture, 90, kBackground);
    const PixelArray quarter = QuarterTurnLeft(picture); // 5 x 8
    EXPECT_EQ(At(turned, 3, 2), At(quarter, 2, 4));
}

TEST(NeutralGeometry, GivesBackTheSourceItself) {
    const PixelArray picture = Speckled({5, 3}, true);
    const PixelArray results[] = {Rotate(picture, 0, kBackground),
                                  Rotate(picture, 360, kBackground),
                                  Rotate(picture, -720, kBackground),
                                  Skew(picture, true, 0, kBackground),
                                  Perspective(picture, false, 0, kBackground),
                                  Twirl(picture, 0, kBackground),
                                  Reproduce(picture, 1)};
    for (const PixelArray& result : results) {
        EXPECT_TRUE(result.SharesPixelsWith(picture));
        EXPECT_TRUE(Same(result, picture));
    }
}

TEST(GeometryParameters, ImpossibleOnesAreRefused) {
    const PixelArray picture = Speckled({5, 3});
    EXPECT_THROW(Rotate(picture, std::nan(""), 0), ImagingError);
    EXPECT_THROW(Twirl(picture, INFINITY, 0), ImagingError);
    EXPECT_THROW(Skew(picture, true, 90.5, 0), ImagingError);
    EXPECT_THROW(Perspective(picture, true, -91, 0), ImagingError);
    EXPECT_THROW(Reproduce(picture, 0), ImagingError);
    EXPECT_THROW(QuarterTurnLeft(PixelArray()), ImagingError);
    EXPECT_THROW(MirrorLeftToRight(PixelArray()), ImagingError);
    EXPECT_THROW(Rotate(PixelArray(), 30, 0), ImagingError);
    EXPECT_THROW(Twirl(PixelArray(), 30, 0), ImagingError);
}

} // namespace
} // namespace pictorel::engine
