// The kernels with vector instructions give what their scalar references give, for every instruction set that
// this processor has and on lengths that are no multiple of any vector.
#include "picture/engine/WarpTestPictures.h"
#include "picture/engine/kernels/resample/ResampleSeparable.h"
#include "picture/engine/kernels/warp/LevelRuns.h"
#include "picture/engine/kernels/warp/WarpLoops.h"
#include "picture/engine/kernels/warp/WarpSampler.h"

#include <hwy/highway.h>
#include <hwy/targets.h>

#include <cmath>
#include <vector>

namespace pictorel::engine {
namespace {

using testing::Speckled;

void ForEachTarget(const std::function<void()>& check) {
    const std::int64_t supported = hwy::SupportedTargets() & HWY_TARGETS;
    for (std::int64_t rest = supported; rest != 0; rest &= rest - 1) {
        const std::int64_t target = rest & -rest;
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().Update(hwy::SupportedTargets());
        SCOPED_TRACE(hwy::TargetName(target));
        check();
    }
    hwy::SetSupportedTargetsForTest(0);
    hwy::GetChosenTarget().Update(hwy::SupportedTargets());
}

// Points anywhere in a picture that has all their neighbours, whole pixels among them.
SampleRun ScatteredPoints(const PixelArray& picture, int count, unsigned seed) {
    SampleRun run;
    run.count = count;
    for (int i = 0; i < count; ++i) {
        const auto place = [&](int size) {
            seed = seed * 1664525U + 1013904223U;
            const int range = (size - 4) * kPhases;
            const int position = kPhases + static_cast<int>(seed >> 8) % range;
            return i % 5 == 0 ? position & ~(kPhases - 1) : position;
        };
        run.x[i] = place(picture.Width());
        run.y[i] = place(picture.Height());
    }
    return run;
}

// Extremes next to each other, where sums overshoot most.
PixelArray HardEdges(int width, int height, bool hasAlpha) {
    PixelArray picture = Speckled(width, height, hasAlpha);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            auto pixel = testing::PixelAt(picture, x, y);
            for (auto& component : pixel) {
                component = component < 128 ? 0 : 255;
            }
            pixel[3] = hasAlpha && x > width / 2 ? pixel[3] : std::uint8_t{255};
            testing::SetPixel(picture, x, y, pixel);
        }
    }
    return picture;
}

TEST(BicubicKernels, EqualTheReference) {
    for (const bool hasAlpha : {false, true}) {
        for (const PixelArray& picture : {Speckled(37, 23, hasAlpha), HardEdges(37, 23, hasAlpha)}) {
            ForEachTarget([&] {
                for (const int count : {1, 2, 3, 7, 17, 63, kRunLength}) {
                    const SampleRun run = ScatteredPoints(picture, count, 7U * count);
                    std::vector<std::uint8_t> expected(4 * static_cast<std::size_t>(count) + 1, 77);
                    std::vector<std::uint8_t> actual = expected;
                    const auto* const pixels = picture.Row(0);
                    if (hasAlpha) {
                        SampleWithAlphaReference(pixels, picture.Stride(), run, expected.data());
                        SampleWithAlpha(pixels, picture.Stride(), run, actual.data());
                    } else {
                        SampleOpaqueReference(pixels, picture.Stride(), run, expected.data());
                        SampleOpaque(pixels, picture.Stride(), run, actual.data());
                    }
                    ASSERT_EQ(actual, expected) << count << " points";
                }
            });
        }
    }
}

TEST(LevelRuns, EqualTheirReferenceAndAreNearTheCommonOne) {
    for (const PixelArray& picture : {Speckled(37, 23), HardEdges(37, 23, false)}) {
        ForEachTarget([&] {
            for (const int count : {1, 2, 3, 7, 17, 63, kRunLength}) {
                SampleRun run = ScatteredPoints(picture, count, 11U * count);
                std::fill(run.y.begin(), run.y.end(), run.y[0]);
                run.bounds = BoundsOf(run);
                std::vector<std::uint8_t> common(4 * static_cast<std::size_t>(count) + 1, 77);
                std::vector<std::uint8_t> expected = common;
                std::vector<std::uint8_t> actual = common;
                SampleOpaqueReference(picture.Row(0), picture.Stride(), run, common.data());
                scalar::SampleLevel(picture.Row(0), picture.Stride(), run, expected.data());
                simd::SampleLevel(picture.Row(0), picture.Stride(), run, actual.data());
                ASSERT_EQ(actual, expected) << count << " points";
                for (std::size_t i = 0; i < common.size(); ++i) {
                    ASSERT_NEAR(expected[i], common[i], 1) << count << " points";
                }
            }
        });
    }
}

TEST(LanczosKernels, EqualTheReference) {
    const std::vector<float> weights{-0.1F, 0.35F, 0.6F, 0.2F, -0.05F};
    for (const int width : {1, 2, 3, 5, 16, 17, 63, 70}) {
        const PixelArray picture = Speckled(width, 5, true);
        const std::size_t components = picture.RowBytes();
        const AxisWeights columns = LanczosWeights(width, 2 * width / 3 + 1);
        ForEachTarget([&] {
            for (const bool isPremultiplied : {false, true}) {
                std::vector<float> expected(components + 1, 77.0F);
                std::vector<float> actual = expected;
                const auto sumReference = isPremultiplied ? SumRowsPremultipliedReference : SumRowsReference;
                const auto sum = isPremultiplied ? SumRowsPremultiplied : SumRows;
                sumReference(picture.Row(0), picture.Stride(), weights, width, expected.data());
                sum(picture.Row(0), picture.Stride(), weights, width, actual.data());
                ASSERT_EQ(actual, expected) << width << " pixels";
                std::vector<std::uint8_t> expectedBytes(4 * static_cast<std::size_t>(columns.Length()) + 1);
                std::vector<std::uint8_t> actualBytes = expectedBytes;
                const auto columnsReference =
                    isPremultiplied ? SumColumnsPremultipliedReference : SumColumnsReference;
                const auto sumColumns = isPremultiplied ? SumColumnsPremultiplied : SumColumns;
                columnsReference(expected.data(), columns, expectedBytes.data());
                sumColumns(expected.data(), columns, actualBytes.data());
                ASSERT_EQ(actualBytes, expectedBytes) << width << " pixels";
            }
        });
    }
}

} // namespace
} // namespace pictorel::engine
