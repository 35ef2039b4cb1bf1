// The kinds of vectors that this processor has, see KernelsTest.h; and whole operations on each of them.
#include "picture/engine/kernels/KernelsTest.h"

#include "picture/engine/Filters.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/HistogramOperations.h"
#include "picture/engine/Resample.h"
#include "picture/engine/Stylize.h"

#define HWY_WANT_AVX3_DL // some kernels come in it too
#include <hwy/targets.h>

#include <optional>

namespace pictorel::engine {

void KernelsTest::ForEachTarget(const std::function<void(const std::string&)>& body) {
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        body(hwy::TargetName(target));
    }
    hwy::SetSupportedTargetsForTest(0);
}

namespace {

using test::Alpha;

struct WholeOperation {
    const char* name;
    PixelArray (*apply)(const PixelArray&);
};

// Those whose kernels are joined in tiles, strips and rings.
constexpr WholeOperation kOperations[] = {
    {"slanted motion blur", [](const PixelArray& p) { return MotionBlur(p, 30, 12.5); }},
    {"long motion blur", [](const PixelArray& p) { return MotionBlur(p, 0, 300); }},
    {"wide Gaussian", [](const PixelArray& p) { return GaussianBlur(p, 21); }},
    {"zoom blur", [](const PixelArray& p) { return ZoomBlur(p, 30); }},
    {"sharpening", [](const PixelArray& p) { return UnsharpMask(p, 9); }},
    {"rotation", [](const PixelArray& p) { return Rotate(p, 17, 0x336699); }},
    {"perspective", [](const PixelArray& p) { return Perspective(p, true, 50, 0x336699); }},
    {"twirl", [](const PixelArray& p) { return Twirl(p, 300, 0); }},
    {"enlarging", [](const PixelArray& p) { return Resize(p, 2 * p.Width() + 1, p.Height() + 9); }},
    {"reducing", [](const PixelArray& p) { return Resize(p, p.Width() / 3 + 1, p.Height() / 5 + 1); }},
    {"mosaic", [](const PixelArray& p) { return Mosaic(p, 13); }},
    {"equalisation", [](const PixelArray& p) { return Equalize(p, 0.6); }},
    {"automatic levels", [](const PixelArray& p) { return AutoLevels(p); }},
};

TEST_F(KernelsTest, OperationsAreTheSameOnEveryProcessor) {
    for (const int width : {1, 15, 131, 643}) {
        for (const Alpha alpha : {Alpha::None, Alpha::Random}) {
            const PixelArray source = test::Random({width, 70}, alpha);
            for (const WholeOperation& operation : kOperations) {
                std::optional<PixelArray> first;
                ForEachTarget([&](const std::string& target) {
                    const PixelArray result = operation.apply(source);
                    EXPECT_TRUE(test::SamePixels(result, first.value_or(result)))
                        << operation.name << ", with " << target << ", width " << width;
                    first = result;
                });
            }
        }
    }
}

} // namespace
} // namespace pictorel::engine
