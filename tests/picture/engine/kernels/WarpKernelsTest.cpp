// The kernels of the room warp: bicubic interpolation, places of points, means of samples.
#include "picture/engine/kernels/KernelsTest.h"
#include "picture/engine/kernels/warp/BicubicKernels.h"
#include "picture/engine/kernels/warp/HorizontalKernels.h"
#include "picture/engine/kernels/warp/RunKernels.h"
#include "picture/engine/kernels/warp/ShiftKernels.h"
#include "picture/engine/kernels/warp/TwirlKernels.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::Random;
using test::Speckled;

constexpr int kCounts[] = {1, 2, 3, 7, 17, 63, kRunLength};

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
PixelArray HardEdges(bool hasAlpha) {
    const PixelArray speckled = Speckled({37, 23}, hasAlpha);
    const auto pixelAt = [&](int x, int y) {
        test::Pixel pixel = test::At(speckled, x, y);
        for (int c = 0; c < 3; ++c) {
            pixel[c] = pixel[c] < 128 ? 0 : 255;
        }
        pixel[3] = !hasAlpha || x <= 18 ? 255 : pixel[3] < 128 ? 0 : 255;
        return pixel;
    };
    return test::Draw({37, 23}, pixelAt, hasAlpha);
}

using Sampler = void (*)(const std::uint8_t*, std::ptrdiff_t, const SampleRun&, std::uint8_t*);

// The pixels of a run, and a byte behind them that is not touched.
std::vector<std::uint8_t> Sampled(Sampler sample, const PixelArray& picture, const SampleRun& run) {
    std::vector<std::uint8_t> pixels(4 * static_cast<std::size_t>(run.count) + 1, 77);
    sample(picture.Row(0), picture.Stride(), run, pixels.data());
    return pixels;
}

TEST_F(KernelsTest, BicubicRuns) {
    for (const bool hasAlpha : {false, true}) {
        for (const PixelArray& picture : {Speckled({37, 23}, hasAlpha), HardEdges(hasAlpha)}) {
            for (const int count : kCounts) {
                const SampleRun run = ScatteredPoints(picture, count, 7U * static_cast<unsigned>(count));
                ExpectSame<BicubicKernels>(
                    std::to_string(count) + " points", [&](const BicubicKernels& kernels) {
                        return Sampled(hasAlpha ? kernels.SampleWithAlpha : kernels.SampleOpaque, picture,
                                       run);
                    });
            }
        }
    }
}

TEST_F(KernelsTest, HorizontalRunsAreNearTheCommonOnes) {
    for (const PixelArray& picture : {Speckled({37, 23}), HardEdges(false)}) {
        for (const int count : kCounts) {
            SampleRun run = ScatteredPoints(picture, count, 11U * static_cast<unsigned>(count));
            std::fill(run.y.begin(), run.y.end(), run.y[0]);
            run.bounds = RunKernels::Plain().BoundsOf(run);
            const auto sampled = [&](const HorizontalKernels& kernels) {
                return Sampled(kernels.SampleHorizontal, picture, run);
            };
            ExpectSame<HorizontalKernels>(std::to_string(count) + " points", sampled);
            const auto horizontal = sampled(HorizontalKernels::Plain());
            const auto common = Sampled(BicubicKernels::Plain().SampleOpaque, picture, run);
            for (std::size_t i = 0; i < common.size(); ++i) {
                ASSERT_NEAR(horizontal[i], common[i], 1) << count << " points";
            }
        }
    }
}

TEST_F(KernelsTest, ShiftedRows) {
    PixelArray pixels = Random({100, 1});
    for (int i = 40; i < 200; ++i) { // the brightest beside the darkest, in neighbours and in pairs of them
        pixels.WritableRows()[i] = (i < 120 ? i / 4 : i / 8) % 2 == 0 ? 255 : 0;
    }
    for (std::size_t phase = 0; phase < kCubicTable.size(); ++phase) {
        ExpectSame<ShiftKernels>("phase " + std::to_string(phase), [&](const ShiftKernels& kernels) {
            PixelArray result(80, 1);
            kernels.ShiftRow({pixels.Row(0) + 4, kCubicTable[phase], 80, result.WritableRows(),
                              phase % 2 == 0 ? pixels.Row(0) : nullptr, phase % 3 == 0});
            return result;
        });
    }
}

// And the formula in double precision, to a thousandth of a pixel for a thousand pixels from the centre.
TEST_F(KernelsTest, TwirledRowsAndTheirFormula) {
    constexpr int kCount = 61;
    constexpr float kUnit = 1024;
    for (const float radius : {1.0F, 30.5F, 4000.0F}) {
        for (const float turns : {-1.0F, 0.25F, 0.5F, 1.0F}) {
            for (const float y : {0.0F, -radius / 2, radius}) {
                const TwirlRow row{-radius / 2, y, 1 / radius, turns, kUnit, 7, -300};
                const auto located = [&](const TwirlKernels& kernels) {
                    std::vector<std::int32_t> places(160);
                    kernels.LocateTwirl(row, kCount, places.data(), places.data() + 80);
                    places.erase(places.begin() + 80 + kCount, places.end());
                    places.erase(places.begin() + kCount, places.begin() + 80);
                    return places;
                };
                ExpectSame<TwirlKernels>("radius " + std::to_string(radius), located);
                const auto places = located(TwirlKernels::Plain());
                for (int i = 0; i < kCount; ++i) {
                    const double x = static_cast<double>(row.x) + i;
                    const double t = std::min(std::sqrt(x * x + double{y} * y) / radius, 1.0);
                    const double angle = 2 * std::numbers::pi * turns * (1 - t * t * (3 - 2 * t));
                    const double exact = (x * std::cos(angle) - y * std::sin(angle)) * kUnit + 7;
                    EXPECT_NEAR(places[static_cast<std::size_t>(i)], exact, 1 + radius / 1000.0) << i;
                }
            }
        }
    }
}

TEST_F(KernelsTest, PointsAndMeansOfRuns) {
    const PixelArray picture = Random({kRunLength, 2}, Alpha::Random, 31);
    for (const int count : kCounts) {
        const std::string what = std::to_string(count) + " points";
        const SampleRun run = ScatteredPoints(picture, count, 5);
        ExpectSame<RunKernels>(what, [&](const RunKernels& kernels) {
            const SampleBounds bounds = kernels.BoundsOf(run);
            std::vector<std::int32_t> all(static_cast<std::size_t>(count));
            kernels.LocateEvenly({-70000, 0.7F, 333.337F}, count, all.data());
            all.insert(all.end(), {bounds.left, bounds.right, bounds.top, bounds.bottom});
            return all;
        });
        for (const bool hasAlpha : {false, true}) {
            ExpectSame<RunKernels>(what, [&](const RunKernels& kernels) {
                std::vector<std::int32_t> sums(4 * static_cast<std::size_t>(count));
                std::vector<std::uint8_t> means(sums.size());
                kernels.AddSamples(picture.Row(0), count, hasAlpha, sums.data());
                kernels.AddSamples(picture.Row(1), count, hasAlpha, sums.data());
                kernels.MeanOfSamples(sums.data(), count, 2, hasAlpha, means.data());
                sums.insert(sums.end(), means.begin(), means.end());
                return sums;
            });
        }
    }
}

} // namespace
} // namespace pictorel::engine
