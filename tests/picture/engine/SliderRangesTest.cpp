// Every operation over the whole range of its slider on awkward shapes: it must come back with a picture.
#include "picture/engine/Geometry.h"
#include "picture/engine/Stylize.h"
#include "support/Pictures.h"

#include <string>
#include <tuple>

namespace pictorel::engine {
namespace {

using test::At;
using test::Speckled;

constexpr std::uint32_t kBackground = 0x00FF8000;

struct Slider {
    const char* name;
    int lowest;
    int highest;
    int step;
    PixelArray (*operation)(const PixelArray&, int);
};

constexpr Slider kSliders[] = {
    {"rotate", 0, 360, 7, [](const PixelArray& p, int v) { return Rotate(p, v, kBackground); }},
    {"skew v", -90, 90, 5, [](const PixelArray& p, int v) { return Skew(p, true, v, kBackground); }},
    {"skew h", -90, 90, 5, [](const PixelArray& p, int v) { return Skew(p, false, v, kBackground); }},
    {"tilt v", -90, 90, 5, [](const PixelArray& p, int v) { return Perspective(p, true, v, kBackground); }},
    {"tilt h", -90, 90, 5, [](const PixelArray& p, int v) { return Perspective(p, false, v, kBackground); }},
    {"tilt v, steep", 86, 90, 1,
     [](const PixelArray& p, int v) { return Perspective(p, true, v, kBackground); }},
    {"tilt h, steep", -90, -86, 1,
     [](const PixelArray& p, int v) { return Perspective(p, false, v, kBackground); }},
    {"twirl", -360, 360, 45, [](const PixelArray& p, int v) { return Twirl(p, v, kBackground); }},
    {"reproduce", 1, 32, 1, [](const PixelArray& p, int v) { return Reproduce(p, v); }},
    {"noise", 0, 50, 5, [](const PixelArray& p, int v) { return Noise(p, v); }},
    {"diffuse", 0, 100, 10, [](const PixelArray& p, int v) { return Diffuse(p, 2, v); }},
    {"mosaic", 0, 50, 1, [](const PixelArray& p, int v) { return Mosaic(p, v); }},
    {"halftone", 0, 2500, 250, [](const PixelArray& p, int v) { return Halftone(p, 4 * std::max(v, 1), 1); }},
    {"emboss angle", 0, 360, 20, [](const PixelArray& p, int v) { return Emboss(p, v, 4, 2); }},
    {"emboss height", 0, 15, 1, [](const PixelArray& p, int v) { return Emboss(p, 33, v, 2); }},
    {"emboss amount", 0, 1500, 100, [](const PixelArray& p, int v) { return Emboss(p, 33, 4, v / 100.0); }},
};

class SliderRanges : public ::testing::TestWithParam<std::tuple<int, int>> {};

TEST_P(SliderRanges, KeepTheCanvas) {
    const auto [width, height] = GetParam();
    for (const Slider& slider : kSliders) {
        for (const bool hasAlpha : {false, true}) {
            for (const double reduction : {1.0, 0.6, 0.04}) {
                PixelArray picture = Speckled({width, height}, hasAlpha);
                picture.SetReduction(reduction);
                for (int value = slider.lowest; value <= slider.highest; value += slider.step) {
                    const PixelArray result = slider.operation(picture, value);
                    ASSERT_EQ(result.Width(), width) << slider.name << " " << value;
                    ASSERT_EQ(result.Height(), height) << slider.name << " " << value;
                    ASSERT_EQ(result.HasAlpha(), hasAlpha) << slider.name << " " << value;
                    ASSERT_EQ(result.Reduction(), reduction) << slider.name << " " << value;
                    const bool isOpaque = At(result, width / 2, height / 2)[3] == 255;
                    ASSERT_TRUE(hasAlpha || isOpaque) << slider.name << " " << value;
                }
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shapes, SliderRanges,
                         ::testing::Values(std::tuple(1, 1), std::tuple(1, 9), std::tuple(13, 1),
                                           std::tuple(2, 2), std::tuple(3, 7), std::tuple(67, 35)));

} // namespace
} // namespace pictorel::engine
