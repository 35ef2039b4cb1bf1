// The kernels of the room blur: wide rows, convolution, halving and doubling, motion, rays.
#include "picture/engine/Geometry.h"
#include "picture/engine/kernels/KernelsTest.h"
#include "picture/engine/kernels/blur/ConvolutionKernels.h"
#include "picture/engine/kernels/blur/MotionKernels.h"
#include "picture/engine/kernels/blur/PyramidKernels.h"
#include "picture/engine/kernels/blur/WideKernels.h"
#include "picture/engine/kernels/blur/ZoomKernels.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::Random;

constexpr int kWhite = 255 * kWideUnit;
constexpr std::array kWidths{1, 2, 15, 16, 33, 70};

template <class Component>
using AlignedRow = std::vector<Component, LineAllocator<Component>>;

// What make(out) writes into both halves of a wide row of `width` pixels.
template <class Make>
std::vector<Wide> BothHalves(int width, const Make& make) {
    AlignedRow<Wide> row(WideLength(width));
    make(row.data());
    const auto count = static_cast<std::ptrdiff_t>(width) * 2;
    std::vector<Wide> halves(row.begin(), row.begin() + count);
    const auto upper = row.begin() + static_cast<std::ptrdiff_t>(HalfLength(width));
    halves.insert(halves.end(), upper, upper + count);
    return halves;
}

// What make(out) writes into `width` pixels.
template <class Make>
std::vector<std::uint8_t> Pixels(int width, const Make& make) {
    AlignedRow<std::uint8_t> row(2 * WideLength(width));
    make(row.data());
    return {row.begin(), row.begin() + static_cast<std::ptrdiff_t>(width) * 4};
}

std::string Width(const std::string& what, int width) {
    return what + ", width " + std::to_string(width);
}

TEST_F(KernelsTest, WideRows) {
    for (const int width : {1, 2, 15, 16, 33, 257}) {
        for (const bool hasAlpha : {false, true}) {
            const PixelArray pixels = Random({width, 1}, Alpha::Random, 17);
            ExpectSame<WideKernels>(Width("from pixels", width), [&](const WideKernels& kernels) {
                return BothHalves(
                    width, [&](Wide* out) { kernels.WideFromPixels(pixels.Row(0), width, hasAlpha, out); });
            });
            auto wide = RandomNumbers<WideRow>(WideLength(width), 0, kWhite);
            if (hasAlpha) { // no colour is brighter than its alpha
                WideKernels::Plain().WideFromPixels(pixels.Row(0), width, true, wide.data());
            }
            ExpectSame<WideKernels>(Width("to pixels", width), [&](const WideKernels& kernels) {
                return Pixels(width, [&](std::uint8_t* out) {
                    kernels.PixelsFromWide(wide.data(), width, hasAlpha, out);
                });
            });
            ExpectSame<WideKernels>(Width("sharpened", width), [&](const WideKernels& kernels) {
                return Pixels(width, [&](std::uint8_t* out) {
                    kernels.SharpenPixels(pixels.Row(0), wide.data(), width, hasAlpha, 4.7F, out);
                });
            });
        }
    }
}

TEST_F(KernelsTest, Convolution) {
    constexpr std::size_t kRoom = 512;
    const auto wide = RandomNumbers<WideRow>(40 * kRoom, 0, kWhite, 7);
    PixelArray pixels = Random({kRoom / 2, 1});
    for (int i = 0; i < 300; ++i) { // the brightest beside the darkest, in the components that are paired
        pixels.WritableRows()[i] = i / 50 % 2 == 0 ? (i % 2 == 0 ? 255 : 0) : pixels.Row(0)[i] / 128 * 255;
    }
    for (const double sigma : {0.07, 0.3, 1.0, 2.0, 2.9, 9.7}) {
        const HalfKernel kernel = GaussianKernel(sigma);
        std::vector<const Wide*> taps;
        for (std::size_t k = 0; k < 2 * kernel.size() - 1; ++k) {
            taps.push_back(wide.data() + k % 40 * kRoom);
        }
        const std::string what = "sigma " + std::to_string(sigma);
        for (const int width : kWidths) {
            ExpectSame<ConvolutionKernels>(Width(what + ", down", width), [&](const auto& kernels) {
                return BothHalves(
                    width, [&](Wide* out) { kernels.Convolve(taps.data(), kernel, out, WideLength(width)); });
            });
            ExpectSame<ConvolutionKernels>(Width(what + ", along", width), [&](const auto& kernels) {
                return BothHalves(width, [&](Wide* out) {
                    kernels.ConvolveAlong(wide.data() + 2, kernel, out, WideLength(width));
                });
            });
            ExpectSame<ConvolutionKernels>(Width(what + ", across", width), [&](const auto& kernels) {
                return BothHalves(
                    width, [&](Wide* out) { kernels.ConvolveAcross(pixels.Row(0) + 4, kernel, width, out); });
            });
            for (const int share : {0, 1, 8192, 32767}) {
                ExpectSame<ConvolutionKernels>(Width(what + ", pixels", width), [&](const auto& kernels) {
                    return Pixels(width, [&](std::uint8_t* out) {
                        kernels.ConvolveToPixels(
                            taps.data(), kernel,
                            {out, width, width > 15, pixels.Row(0), static_cast<std::int16_t>(share)});
                    });
                });
            }
        }
    }
}

TEST_F(KernelsTest, Pyramid) {
    constexpr std::size_t kRoom = 1024;
    const auto wide = RandomNumbers<WideRow>(5 * kRoom, 0, kWhite, 5);
    std::array<const Wide*, 5> rows{};
    std::array<const std::uint8_t*, 5> pixels{};
    for (std::size_t k = 0; k < rows.size(); ++k) {
        rows[k] = wide.data() + k * kRoom;
        pixels[k] = reinterpret_cast<const std::uint8_t*>(rows[k]) + k; // not on whole vectors
    }
    for (const int width : kWidths) {
        const auto expectSame = [&](const char* what, int resultWidth, const auto& make) {
            ExpectSame<PyramidKernels>(Width(what, width), [&](const PyramidKernels& kernels) {
                return BothHalves(resultWidth, [&](Wide* out) { make(kernels, out); });
            });
        };
        expectSame("halving down", width, [&](const auto& kernels, Wide* out) {
            kernels.HalveDown(rows.data(), WideLength(width), out);
        });
        expectSame("halving pixels down", width, [&](const auto& kernels, Wide* out) {
            kernels.HalveDownOpaque(pixels.data(), width, out);
        });
        expectSame("halving across", width,
                   [&](const auto& kernels, Wide* out) { kernels.HalveAcross(wide.data(), width, out); });
        expectSame("doubling across", 2 * width, [&](const auto& kernels, Wide* out) {
            kernels.DoubleAcross(wide.data(), width + 5, width, out);
        });
        for (const bool isBetween : {false, true}) {
            expectSame("doubling down", width, [&](const auto& kernels, Wide* out) {
                kernels.DoubleDown(rows.data(), isBetween, WideLength(width), out);
            });
            ExpectSame<PyramidKernels>(Width("doubling to pixels", width), [&](const auto& kernels) {
                return Pixels(width, [&](std::uint8_t* out) {
                    kernels.DoubleDownToPixels(rows.data(), isBetween, HalfLength(width),
                                               {out, width, width > 15, nullptr, 0});
                });
            });
        }
    }
}

TEST_F(KernelsTest, SlidingMeans) {
    constexpr int kRoom = 144; // a multiple of 16
    const PixelArray source = Random({kRoom / 4, 60});
    const PixelArray row = Random({300, 1});
    for (const double length : {1.5, 2.0, 7.3, 40.0, 126.0}) {
        const auto line = FixedLine::Of(Line(length));
        ASSERT_TRUE(line) << length;
        const std::string what = "length " + std::to_string(length);
        for (const int size : {4, 64, 132}) {
            ExpectSame<MotionKernels>(Width(what, size), [&](const MotionKernels& kernels) {
                PixelArray result(kRoom / 4, 60);
                kernels.Slide(
                    {source.Row(0), source.Stride(), result.WritableRows(), result.Stride(), 60, size},
                    *line);
                return Crop(result, {0, 0, size / 4, 60});
            });
        }
        for (const int width : {1, 7, 8, 65}) {
            ExpectSame<MotionKernels>(Width(what + ", along", width), [&](const MotionKernels& kernels) {
                PixelArray result(80, 1);
                kernels.SlideAlong(
                    {row.Row(0) + std::ptrdiff_t{4} * 100, result.WritableRows(), width, width > 8}, *line);
                return Crop(result, {0, 0, width, 1});
            });
        }
    }
    EXPECT_FALSE(FixedLine::Of(Line(130))) << "the sum of 130 whites does not fit";
}

TEST_F(KernelsTest, LongSlidingMeans) {
    for (const bool hasAlpha : {false, true}) {
        for (const int width : {1, 15, 131}) {
            const PixelArray rows = Random({width, 3}, Alpha::Random, 19);
            const int count = 4 * width;
            const MeanStep step{rows.Row(0), rows.Row(1), rows.Row(2), 0.37F, 1.0F / 401};
            ExpectSame<MotionKernels>(Width("sums", width), [&](const MotionKernels& kernels) {
                auto sums =
                    RandomNumbers<std::vector<std::int32_t>>(static_cast<std::size_t>(count), 0, 9999);
                std::vector<std::uint8_t> out(sums.size());
                kernels.AddToMean(rows.Row(1), count, hasAlpha, sums.data());
                kernels.SlideRow(step, count, hasAlpha, sums.data(), out.data());
                sums.insert(sums.end(), out.begin(), out.end());
                return sums;
            });
        }
    }
}

TEST_F(KernelsTest, MotionComponents) {
    for (const int width : {1, 15, 16, 67}) {
        const PixelArray pixels = Random({width, 1}, Alpha::Random, 23);
        const auto size = static_cast<std::size_t>(width);
        const auto wide = RandomNumbers<std::vector<MotionComponent>>(4 * size, 0, 255 * kMotionUnit);
        ExpectSame<MotionKernels>(Width("widened", width), [&](const MotionKernels& kernels) {
            std::vector<MotionComponent> both(7 * size);
            kernels.WidenRow(pixels.Row(0), width, both.data());
            kernels.WidenColours(pixels.Row(0), width, both.data() + 4 * size);
            return both;
        });
        ExpectSame<MotionKernels>(Width("narrowed", width), [&](const MotionKernels& kernels) {
            std::vector<std::uint8_t> both(8 * size);
            kernels.NarrowRow(wide.data(), width, both.data());
            kernels.NarrowColours(wide.data(), width, both.data() + 4 * size);
            return both;
        });
    }
}

TEST_F(KernelsTest, SumsOfPairs) {
    const auto in = RandomNumbers<std::vector<MotionComponent>>(3000, 0, 255 * kMotionUnit, 11);
    std::vector<WeightedPair> pairs;
    for (int left = 65536, i = 1; left > 0; ++i) {
        const int weight = std::min(left, i * 3571 % 9000 + 1);
        pairs.push_back({i * 617 % 1000, static_cast<std::int16_t>(weight)});
        left -= weight;
    }
    for (const std::size_t count : {4U, 20U, 68U, 400U}) {
        ExpectSame<MotionKernels>("count " + std::to_string(count), [&](const MotionKernels& kernels) {
            std::vector<MotionComponent> sums(count);
            kernels.SumPairs(in.data() + 1000, pairs, count, sums.data());
            return sums;
        });
    }
}

constexpr std::size_t kLine = 192; // numbers from node to node of the rays
constexpr std::size_t kNodes = 5;

// The numbers of `rays` rays of every line, without what vectors write too much.
void AppendRays(const std::vector<std::int16_t>& values, int rays, std::vector<std::int16_t>& to) {
    for (std::size_t line = 0; line < values.size(); line += kLine) {
        const auto first = values.begin() + static_cast<std::ptrdiff_t>(line);
        to.insert(to.end(), first, first + std::ptrdiff_t{4} * rays);
    }
}

// What the steps along the rays through a picture give, one behind the other.
std::vector<std::int16_t> TakeRaySteps(const ZoomKernels& kernels, const PixelArray& picture, int rays) {
    std::vector<std::int16_t> values(kNodes * kLine);
    std::vector<std::int16_t> means(kLine);
    std::vector<std::int32_t> sums(kLine);
    std::vector<std::int16_t> premultiplied(std::size_t{4} * 64);
    const auto valuesAt = [&](std::size_t node) { return values.data() + node * kLine; };
    for (std::size_t node = 0; node < kNodes; ++node) {
        // As far apart as they may be, forwards and backwards, and close together.
        const Crossing crossing =
            node == 4 ? Crossing{45 * 65536 + 99, -65536} : Crossing{700, node == 2 ? 65536 : 15101};
        const std::uint8_t* const line = picture.Row(static_cast<int>(node));
        if (picture.HasAlpha()) {
            kernels.PremultiplyLine(line, 61, premultiplied.data());
            kernels.CrossingsPremultiplied(premultiplied.data(), crossing, rays, valuesAt(node));
        } else {
            kernels.Crossings(line, crossing, rays, valuesAt(node));
        }
    }
    std::vector<std::int16_t> all;
    AppendRays(values, rays, all);
    kernels.AddInterval(valuesAt(0), valuesAt(1), rays, sums.data());
    kernels.SlideRays({valuesAt(1), valuesAt(2), valuesAt(0), valuesAt(1), false, 9000, 16384, 14, 0.18F},
                      rays, sums.data(), means.data());
    AppendRays(means, rays, all);
    kernels.SlideRays({valuesAt(3), valuesAt(4), valuesAt(1), valuesAt(2), true, 1, 3, 0, 1.0F / 4000}, rays,
                      sums.data(), means.data());
    AppendRays(means, rays, all);
    PixelArray pixels = test::Constant({2, 9}, {0, 0, 0, 255});
    const PixelsBetween between{70000, (rays - 4) * 65536 / 9, 9, pixels.WritableRows(), pixels.Stride()};
    kernels.MixRays(means.data(), between);
    kernels.MixRaysWithAlpha(
        means.data(), {between.position, between.step, between.count, between.pixels + 4, between.pixelStep});
    for (int y = 0; y < pixels.Height(); ++y) {
        all.insert(all.end(), pixels.Row(y), pixels.Row(y) + 8);
    }
    return all;
}

TEST_F(KernelsTest, ZoomRays) {
    for (const Alpha alpha : {Alpha::None, Alpha::Random}) {
        const PixelArray picture = Random({80, 9}, alpha, 11);
        for (const int rays : {4, 5, 33, 46}) {
            ExpectSame<ZoomKernels>("rays " + std::to_string(rays), [&](const ZoomKernels& kernels) {
                return TakeRaySteps(kernels, picture, rays);
            });
        }
    }
}

} // namespace
} // namespace pictorel::engine
