// Operations on a reduced copy show what the operation on the whole picture, reduced, will look like.
#include "picture/engine/Geometry.h"
#include "picture/engine/Resample.h"
#include "picture/engine/Stylize.h"
#include "support/Pictures.h"

#include <string>

namespace pictorel::engine {
namespace {

using test::PhotoLike;
using test::StructuralSimilarity;

constexpr std::uint32_t kBackground = 0x00404040;

// For the operations with a live preview. Emboss and halftone come from buttons and have none: emboss clips
// at hard edges, and halftone has moire with fine texture, before either is reduced.
constexpr double kPreviewed = 0.98;
constexpr double kNotPreviewed = 0.97;

struct Case {
    std::string name;
    std::function<PixelArray(const PixelArray&)> operation;
    double leastSimilarity = kPreviewed;
};

std::vector<Case> Cases() {
    std::vector<Case> cases;
    for (const int degrees : {10, 90, 200}) {
        cases.push_back({"rotate " + std::to_string(degrees),
                         [=](const PixelArray& p) { return Rotate(p, degrees, kBackground); }});
    }
    for (const bool vertical : {false, true}) {
        for (const int degrees : {-80, -30, 10, 60}) {
            const std::string which =
                (vertical ? " vertically " : " horizontally ") + std::to_string(degrees);
            cases.push_back({"skew" + which,
                             [=](const PixelArray& p) { return Skew(p, vertical, degrees, kBackground); }});
            cases.push_back({"tilt" + which, [=](const PixelArray& p) {
                                 return Perspective(p, vertical, degrees, kBackground);
                             }});
        }
    }
    for (const int degrees : {-360, -90, 45, 180}) {
        cases.push_back({"twirl " + std::to_string(degrees),
                         [=](const PixelArray& p) { return Twirl(p, degrees, kBackground); }});
    }
    for (const int count : {2, 3, 7, 16, 32}) {
        cases.push_back(
            {"reproduce " + std::to_string(count), [=](const PixelArray& p) { return Reproduce(p, count); }});
    }
    for (const int size : {3, 8, 13, 30, 50}) {
        cases.push_back(
            {"mosaic " + std::to_string(size), [=](const PixelArray& p) { return Mosaic(p, size); }});
    }
    for (const int height : {1, 4, 15}) {
        cases.push_back({"emboss height " + std::to_string(height),
                         [=](const PixelArray& p) { return Emboss(p, 10, height, 2); }, kNotPreviewed});
    }
    for (const int size : {1, 3, 8, 20}) {
        cases.push_back({"halftone " + std::to_string(size),
                         [=](const PixelArray& p) { return Halftone(p, 4 * size, 1); }, kNotPreviewed});
    }
    for (const int percent : {10, 100}) {
        cases.push_back({"diffuse " + std::to_string(percent),
                         [=](const PixelArray& p) { return Diffuse(p, 2, percent); }});
    }
    return cases;
}

class ReducedCopy : public ::testing::TestWithParam<int> {}; // width of the copy

TEST_P(ReducedCopy, ShowsThePictureReduced) {
    const PixelArray picture = PhotoLike({1200, 800});
    const int width = GetParam();
    const int height = width * 2 / 3;
    PixelArray copy = Resize(picture, width, height);
    copy.SetReduction(width / 1200.0);
    for (const Case& c : Cases()) {
        const PixelArray expected = Resize(c.operation(picture), width, height);
        EXPECT_GE(StructuralSimilarity(c.operation(copy), expected), c.leastSimilarity) << c.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Widths, ReducedCopy, ::testing::Values(120, 249));

} // namespace
} // namespace pictorel::engine
