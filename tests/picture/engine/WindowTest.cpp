// Operations that make a part of their result make the one that cutting it out of the whole result would
// give.
#include "picture/ImagingError.h"
#include "picture/engine/Filters.h"
#include "picture/engine/Geometry.h"
#include "support/Pictures.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace pictorel::engine {
namespace {

using test::SamePixels;
using test::Speckled;

constexpr std::uint32_t kBackground = 0x00C08040;

using Operation = std::function<PixelArray(const PixelArray&, const OptionalWindow&)>;

struct Row {
    std::string name;
    Operation operation;
    bool isSpread = false; // over more samples where it reduces: decided by the run, which begins elsewhere
};

std::vector<Row> Rows() {
    std::vector<Row> rows;
    for (const int degrees : {0, 17, 90, 180, 251, 270}) {
        rows.push_back(
            {"rotate " + std::to_string(degrees), [=](const PixelArray& p, const OptionalWindow& w) {
                 return Rotate(p, degrees, kBackground, w);
             }});
    }
    for (const int degrees : {-90, 45}) {
        rows.push_back(
            {"twirl " + std::to_string(degrees),
             [=](const PixelArray& p, const OptionalWindow& w) { return Twirl(p, degrees, kBackground, w); },
             true});
    }
    for (const bool vertical : {false, true}) {
        for (const int degrees : {-90, -60, 0, 12, 85}) {
            const std::string which =
                (vertical ? " vertically " : " horizontally ") + std::to_string(degrees);
            rows.push_back({"skew" + which,
                            [=](const PixelArray& p, const OptionalWindow& w) {
                                return Skew(p, vertical, degrees, kBackground, w);
                            },
                            true});
            rows.push_back({"tilt" + which,
                            [=](const PixelArray& p, const OptionalWindow& w) {
                                return Perspective(p, vertical, degrees, kBackground, w);
                            },
                            true});
        }
    }
    for (const int count : {1, 2, 7, 32}) {
        rows.push_back(
            {"reproduce " + std::to_string(count),
             [=](const PixelArray& p, const OptionalWindow& w) { return Reproduce(p, count, w); }});
    }
    for (const int percent : {0, 3, 30, 100}) {
        rows.push_back(
            {"zoom blur " + std::to_string(percent),
             [=](const PixelArray& p, const OptionalWindow& w) { return ZoomBlur(p, percent, w); }});
    }
    return rows;
}

struct Difference {
    int largest = 0;
    double mean = 0;
};

// Colour counts as far as it is seen: what is nearly clear has hardly any.
Difference SeenDifference(const PixelArray& a, const PixelArray& b) {
    Difference difference;
    const auto add = [&](int value) {
        difference.largest = std::max(difference.largest, value);
        difference.mean += value;
    };
    for (int y = 0; y < a.Height(); ++y) {
        for (int x = 0; x < a.Width(); ++x) {
            const test::Pixel one = test::At(a, x, y);
            const test::Pixel other = test::At(b, x, y);
            add(std::abs(one[3] - other[3]));
            for (std::size_t c = 0; c < 3; ++c) {
                add(std::abs(one[c] * one[3] - other[c] * other[3]) / 255);
            }
        }
    }
    difference.mean /= 4.0 * a.Width() * a.Height();
    return difference;
}

TEST(Window, IsWhatTheWholeResultHasThere) {
    for (const bool hasAlpha : {false, true}) {
        // Sides of which the difference is even, where a quarter turn has a middle, and odd.
        for (const test::Size size : {test::Size{301, 217}, test::Size{240, 333}}) {
            const PixelArray picture = Speckled(size, hasAlpha);
            const Window windows[] = {
                {0, 0, size.width, size.height},
                {0, 0, 40, 30},                               // a corner
                {size.width - 37, size.height - 70, 37, 70},  // the opposite one
                {size.width / 2 - 9, size.height / 2, 21, 1}, // a row at the centre
                {33, 90, 150, 101},
            };
            for (const Row& row : Rows()) {
                const PixelArray whole = row.operation(picture, {});
                for (const Window& window : windows) {
                    const PixelArray part = row.operation(picture, window);
                    ASSERT_EQ(part.Width(), window.width);
                    ASSERT_EQ(part.Height(), window.height);
                    const Difference difference = SeenDifference(part, Crop(whole, window));
                    EXPECT_LE(difference.largest, row.isSpread ? 255 : 2) << row.name;
                    EXPECT_LE(difference.mean, 2)
                        << row.name << (hasAlpha ? " with alpha" : "") << ", window at " << window.left
                        << ", " << window.top << ", picture " << size.width << " x " << size.height;
                }
            }
        }
    }
}

TEST(Window, CropIsWhatThePictureHasThere) {
    const PixelArray picture = Speckled({50, 40}, true);
    const PixelArray part = Crop(picture, {-5, 30, 20, 20}); // as far as there is a picture
    ASSERT_EQ(part.Width(), 15);
    ASSERT_EQ(part.Height(), 10);
    EXPECT_TRUE(part.HasAlpha());
    EXPECT_EQ(test::At(part, 14, 9), test::At(picture, 14, 39));
    EXPECT_TRUE(SamePixels(Crop(picture, {0, 0, 50, 40}), picture));
    EXPECT_THROW(Crop(picture, {50, 0, 10, 10}), ImagingError);
    EXPECT_THROW(Crop(picture, {0, 0, 0, 10}), ImagingError);
}

} // namespace
} // namespace pictorel::engine
