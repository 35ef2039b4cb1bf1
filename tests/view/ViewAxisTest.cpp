// Where picture pixels fall on the device, and the zoom ladder.
#include "view/ViewAxis.h"
#include "view/ZoomLadder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace pictorel {
namespace {

constexpr int kPictureSides[] = {1, 2, 3, 7, 250, 999, 1000, 4000, 6001, 32767};
constexpr int kViewSides[] = {1, 10, 333, 640, 651, 705, 1250, 1251, 3840};

TEST(ViewAxis, FitShowsEveryPixelAndIsTheLargestZoomThatDoes) {
    for (const int width : kPictureSides) {
        for (const int height : kPictureSides) {
            for (const int view : kViewSides) {
                SCOPED_TRACE(testing::Message() << width << " x " << height << " in " << view);
                ViewAxis across{view, width, 1.0, 0.5 * width};
                ViewAxis down{view / 2 + 1, height, 1.0, 0.5 * height};
                across.zoom = down.zoom = FitZoom(across, down);
                for (const ViewAxis& axis : {across, down}) {
                    const Span drawn = axis.Drawn(1 << 20);
                    EXPECT_GE(axis.Origin(), 0);
                    EXPECT_GE(drawn.Length(), axis.picture * axis.zoom - 1e-6);
                    EXPECT_LE(drawn.end, axis.view);
                    EXPECT_EQ(axis.Visible(), (Span{0, axis.picture}));
                    EXPECT_LE(std::abs(axis.Origin() - (axis.view - drawn.end)), 1) << "not centred";
                }
                const bool larger =
                    width * across.zoom * 1.001 > across.view || height * down.zoom * 1.001 > down.view;
                EXPECT_TRUE(larger || across.zoom == kLargestFit);
            }
        }
    }
}

TEST(ViewAxis, DrawnAndVisibleAgreeWithThePixelsUnderTheView) {
    for (const double zoom : {0.01, 0.3, 0.999, 1.0, 1.7, 3.3, 8.0}) {
        for (const double centre : {-40.0, 0.0, 12.5, 99.9, 170.0, 400.0}) {
            SCOPED_TRACE(testing::Message() << zoom << " at " << centre);
            const ViewAxis axis{77, 200, zoom, centre};
            Span seen{200, 0};
            for (int pixel = 0; pixel < axis.picture; ++pixel) {
                const double begin = static_cast<double>(axis.Origin()) + pixel * zoom;
                if (begin + zoom > 1e-6 && begin < axis.view - 1e-6) {
                    seen = {std::min(seen.begin, pixel), pixel + 1};
                }
            }
            EXPECT_EQ(seen.IsEmpty(), axis.Drawn(axis.view).IsEmpty());
            if (!seen.IsEmpty()) {
                EXPECT_EQ(axis.Visible(), seen);
            }
            EXPECT_GE(axis.Visible().Length(), 1);
        }
    }
}

TEST(ViewAxis, SurvivesAbsurdNumbers) {
    constexpr double kHuge = std::numeric_limits<double>::max();
    constexpr double kTiny = std::numeric_limits<double>::denorm_min();
    for (const double zoom : {kTiny, 1e-9, 1.0, 1e9, kHuge}) {
        for (const double centre : {-kHuge, -1.0, 0.0, 50.0, kHuge}) {
            const ViewAxis axis{100, 100, zoom, centre};
            const Span drawn = axis.Drawn(101);
            EXPECT_GE(drawn.begin, 0);
            EXPECT_LE(drawn.end, 101);
            EXPECT_GE(axis.Visible().Length(), 1);
            EXPECT_LE(axis.Visible().end, 100);
        }
    }
}

TEST(ViewAxis, CentreInsideLeavesNoGapAndCentresASmallPicture) {
    const ViewAxis large{100, 1000, 2.0, 0.0};
    EXPECT_DOUBLE_EQ((ViewAxis{100, 1000, 2.0, -70.0}.CentreInside()), 25.0);
    EXPECT_DOUBLE_EQ((ViewAxis{100, 1000, 2.0, 5000.0}.CentreInside()), 975.0);
    EXPECT_DOUBLE_EQ((ViewAxis{100, 1000, 2.0, 400.0}.CentreInside()), 400.0);
    EXPECT_DOUBLE_EQ((ViewAxis{100, 30, 2.0, 400.0}.CentreInside()), 15.0);
    EXPECT_TRUE(large.PictureExceedsView());
}

struct Step {
    double from, above, below;
};

TEST(ZoomLadder, StepsFromAnyZoomToTheNextRung) {
    constexpr Step kSteps[] = {
        {1.0, 1.25, 0.8},      {0.5, 0.64, 0.4},       {0.25, 0.32, 0.2},    {2.0, 2.5, 1.6},
        {0.378, 0.4, 0.32},    {0.99, 1.0, 0.8},       {1.01, 1.25, 1.0},    {9.5, 10.0, 8.0},
        {10.0, 10.0, 8.0},     {64.0, 64.0, 10.0},     {0.01, 0.0125, 0.01}, {0.003, 0.01, 0.003},
        {0.011, 0.0125, 0.01}, {1 + 1e-12, 1.25, 0.8},
    };
    for (const Step& step : kSteps) {
        EXPECT_DOUBLE_EQ(RungAbove(step.from), step.above) << step.from;
        EXPECT_DOUBLE_EQ(RungBelow(step.from), step.below) << step.from;
    }
}

} // namespace
} // namespace pictorel
