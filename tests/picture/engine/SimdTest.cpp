// The vector kernels against the plain loops, bit for bit, on every kind of vectors that this processor has.
#include "picture/engine/Filters.h"
#include "picture/engine/TestPictures.h"
#include "picture/engine/kernels/blur/Convolution.h"
#include "picture/engine/kernels/blur/MotionRows.h"
#include "picture/engine/kernels/blur/PyramidRows.h"
#include "picture/engine/kernels/blur/ZoomRays.h"
#include "picture/engine/kernels/geometry/TurnTile.h"
#include "picture/engine/kernels/point/EndCounts.h"
#include "picture/engine/kernels/point/PointRows.h"
#include "picture/engine/kernels/rank/RankRows.h"
#include "picture/engine/kernels/resample/ResampleFixed.h"
#include "picture/engine/kernels/stylize/DiffuseRows.h"
#include "picture/engine/kernels/stylize/EmbossRows.h"
#include "picture/engine/kernels/stylize/NoiseRows.h"
#include "picture/engine/kernels/warp/ShiftRows.h"
#include "picture/engine/kernels/warp/TwirlRows.h"

#define HWY_WANT_AVX3_DL // some kernels come in it too
#include <hwy/targets.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <optional>

namespace pictorel::engine::test {
namespace {

// Runs body(name) with each kind of vectors in turn.
void ForEachTarget(const std::function<void(const char*)>& body) {
    for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
        hwy::SetSupportedTargetsForTest(target);
        body(hwy::TargetName(target));
    }
    hwy::SetSupportedTargetsForTest(0);
}

using RowFunction = std::function<void(const std::uint8_t* in, std::uint8_t* out, int width)>;

struct Pair {
    std::string name;
    RowFunction plain;
    RowFunction vectors;
};

PixelArray Apply(const PixelArray& source, const RowFunction& function) {
    PixelArray result = PixelArray::Like(source);
    std::uint8_t* const rows = result.WritableRows();
    for (int y = 0; y < source.Height(); ++y) {
        function(source.Row(y), rows + y * result.Stride(), source.Width());
    }
    return result;
}

std::vector<Pair> RowPairs() {
    std::vector<Pair> pairs{{"invert", scalar::InvertRow, simd::InvertRow},
                            {"mirror", scalar::MirrorRow, simd::MirrorRow}};
    const auto add = [&](const std::string& name, auto plain, auto vectors, auto parameter) {
        pairs.push_back({name, [=](auto* in, auto* out, int width) { plain(in, out, width, parameter); },
                         [=](auto* in, auto* out, int width) { vectors(in, out, width, parameter); }});
    };
    add("add", scalar::AddRow, simd::AddRow,
        ClampedSum{{0, 255, 30, 0}, {55, 255, 255, 255}, {200, 1, 226, 0}});
    std::array<std::int32_t, 256> change{};
    for (std::size_t i = 0; i < change.size(); ++i) {
        change[i] = static_cast<std::int32_t>(i * 37 % 511) - 255;
    }
    const auto addLookUp = [&](const std::string& name, auto plain, auto vectors, auto table,
                               auto sectioned) {
        pairs.push_back({name, [=](auto* in, auto* out, int width) { plain(in, out, width, table); },
                         [=](auto* in, auto* out, int width) { vectors(in, out, width, sectioned); }});
    };
    addLookUp("add by luma", scalar::AddByLumaRow, simd::AddByLumaRow, change, SectionedChange(change));
    ColourMaps maps{};
    for (std::size_t i = 0; i < maps.blue.size(); ++i) {
        maps.blue[i] = static_cast<std::uint8_t>(i * 7 + 3);
        maps.green[i] = static_cast<std::uint8_t>(i * i + 91);
        maps.red[i] = static_cast<std::uint8_t>(255 - i / 3);
    }
    addLookUp("map", scalar::MapRow, simd::MapRow, maps, SectionedMaps(maps));
    for (const int level : {0, 1, 128, 255, 256}) {
        add("threshold", scalar::ThresholdRow, simd::ThresholdRow, level);
    }
    for (const float amount : {-1.0F, -0.83F, -0.5F, -0.01F, 0.01F, 0.3F, 0.5F, 1.0F}) {
        add("saturation", scalar::SaturationRow, simd::SaturationRow, SaturationChange(1 + amount));
        add("lightness", scalar::LightnessRow, simd::LightnessRow, amount);
    }
    for (const HueTurn& turn : {HueTurn{0, 1092}, {0, 32768}, {1, 0}, {2, 0}, {3, 21845}, {5, 65535}}) {
        add("hue", scalar::HueRow, simd::HueRow, turn);
    }
    return pairs;
}

TEST(Simd, PointRowsEqualPlainLoops) {
    ForEachTarget([](const char* target) {
        for (const Size size : {Size{1, 1}, {7, 5}, {33, 17}, {257, 3}, {400, 300}, {2049, 2}}) {
            const PixelArray source = Random(size, Alpha::Random, 3);
            for (const Pair& pair : RowPairs()) {
                EXPECT_TRUE(SamePixels(Apply(source, pair.vectors), Apply(source, pair.plain)))
                    << pair.name << " with " << target << " at " << size.width << " x " << size.height;
            }
        }
    });
}

// Every colour there is on a grid of odd spacing, since rounding luma is exact only by a narrow argument.
TEST(Simd, LumaEqualsPlainLoops) {
    const PixelArray colours = Draw({256, 64 * 52}, [](int x, int y) {
        return Pixel{static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y % 64 * 4 + x % 4),
                     static_cast<std::uint8_t>(y / 64 * 5), 255};
    });
    ForEachTarget([&](const char* target) {
        std::array<std::uint8_t, 256> plain{};
        std::array<std::uint8_t, 256> vectors{};
        for (int y = 0; y < colours.Height(); ++y) {
            scalar::LumaRow(colours.Row(y), plain.data(), colours.Width());
            simd::LumaRow(colours.Row(y), vectors.data(), colours.Width());
            ASSERT_EQ(vectors, plain) << target << " row " << y;
        }
    });
}

TEST(Simd, NoiseRowsEqualPlainLoops) {
    ForEachTarget([](const char* target) {
        for (const int width : {1, 15, 64, 131}) {
            for (const int rows : {1, 6, 25}) {
                constexpr std::size_t kRoom = 256;
                std::vector<std::int32_t> plain(kRoom * kNoiseSumNumbers);
                std::vector<std::int32_t> vectors(plain.size());
                scalar::SumNoise(40, 40 + rows, width, plain.data());
                simd::SumNoise(40, 40 + rows, width, vectors.data());
                EXPECT_TRUE(
                    std::equal(plain.begin(), plain.begin() + width * kNoiseSumNumbers, vectors.begin()))
                    << target << " width " << width << " rows " << rows;
            }
            for (const int percent : {1, 37, 100}) {
                const PixelArray source = Random({width, 1}, Alpha::Random, 13);
                const auto amplitude = static_cast<std::int16_t>(percent * 255 * kNoiseUnit / 100);
                PixelArray plain(width, 1);
                PixelArray vectors(width, 1);
                scalar::AddNoise({source.Row(0), plain.WritableRows(), width, 77, amplitude, false});
                simd::AddNoise({source.Row(0), vectors.WritableRows(), width, 77, amplitude, width > 64});
                EXPECT_TRUE(SamePixels(vectors, plain)) << target << " width " << width;
            }
        }
    });
}

TEST(Simd, DiffusionEqualsPlainLoops) {
    ForEachTarget([](const char* target) {
        for (const int width : {1, 15, 64, 131}) {
            for (const int radius : {1, 2, 20, 32767}) {
                for (const std::uint32_t lastMoved : {0U, 0x80000000U, 0xFFFFFFFFU}) {
                    const Scatter scatter{width - 1, 50, 144, radius, lastMoved};
                    std::vector<std::int32_t> plain(static_cast<std::size_t>(width));
                    std::vector<std::int32_t> vectors(plain.size() + 16);
                    scalar::ChooseSources(scatter, 49, plain.data());
                    simd::ChooseSources(scatter, 49, vectors.data());
                    EXPECT_TRUE(std::equal(plain.begin(), plain.end(), vectors.begin()))
                        << target << " width " << width << " radius " << radius;
                }
            }
        }
    });
}

TEST(Simd, RankRowsEqualPlainLoops) {
    const PixelArray picture = Random({400, 3}, Alpha::Random, 5);
    ForEachTarget([&](const char* target) {
        for (const WindowStep& step : {WindowStep{2, 0, 4}, {3, 4, 8}, {4, 52, 131}}) {
            for (const Rank rank : {Rank::Brightest, Rank::Darkest}) {
                for (const std::size_t count : {1U, 63U, 64U, 517U}) {
                    std::vector<std::uint8_t> plain(count + kRankRoom);
                    std::vector<std::uint8_t> inPlace(picture.Row(0) + 4, picture.Row(0) + 1004);
                    scalar::SpreadWindow(rank, step, count, inPlace.data(), plain.data());
                    simd::SpreadWindow(rank, step, count, inPlace.data(), inPlace.data());
                    EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + static_cast<std::ptrdiff_t>(count),
                                           inPlace.begin()))
                        << target << " parts " << step.parts << " count " << count;
                }
            }
        }
        for (const int width : {1, 15, 16, 17, 331}) {
            for (const int share : {0, 1, 16384, 32767}) {
                PixelArray plain(width, 1);
                PixelArray vectors(width, 1);
                const std::uint8_t* const inner = picture.Row(0) + 4;
                const std::uint8_t* const outer = picture.Row(1) + 8;
                scalar::MixRow(inner, outer, share, {picture.Row(2), plain.WritableRows(), width, false});
                simd::MixRow(inner, outer, share, {picture.Row(2), vectors.WritableRows(), width, true});
                EXPECT_TRUE(SamePixels(vectors, plain)) << target << " mixed, width " << width;
            }
            for (const Rank rank : {Rank::Brightest, Rank::Darkest}) {
                PixelArray plain(width, 1);
                PixelArray vectors(width, 1);
                const std::uint8_t* const rows[] = {picture.Row(0), picture.Row(1), picture.Row(2),
                                                    picture.Row(0) + 16};
                const auto count = 4 * static_cast<std::size_t>(width);
                for (const std::size_t reached : {2U, 3U, 4U}) {
                    const std::span within(rows, reached);
                    std::vector<std::uint8_t> plainColumns(2 * count);
                    std::vector<std::uint8_t> columns(2 * count);
                    scalar::ExtremeOfRows(rank, within, 12, count, plainColumns.data(),
                                          plainColumns.data() + count);
                    simd::ExtremeOfRows(rank, within, 12, count, columns.data(), columns.data() + count);
                    EXPECT_EQ(columns, plainColumns)
                        << target << " of " << reached << " rows, width " << width;
                }
                const WindowStep step{3, 4, 8};
                const std::uint8_t* const colour = picture.Row(0) + 4;
                scalar::JoinRow(rank, step, colour, {picture.Row(2), plain.WritableRows(), width, false});
                simd::JoinRow(rank, step, colour, {picture.Row(2), vectors.WritableRows(), width, false});
                EXPECT_TRUE(SamePixels(vectors, plain)) << target << " joined, width " << width;
            }
        }
    });
}

TEST(Simd, CountsAtBothEnds) {
    const EndLimits limits{{{0, 1, 2, 0},
                            {1, 128, 255, 255},
                            {255, 200, 3, 1},
                            {7, 7, 7, 7},
                            {255, 1, 0, 9},
                            {254, 127, 129, 0},
                            {1, 255, 30, 3},
                            {0, 0, 0, 0}}};
    ForEachTarget([&](const char* target) {
        for (const int width : {1, 15, 16, 67, 5001}) { // the last counts a byte further than 255
            const PixelArray picture = Random({width, 1});
            EndCounts plain{};
            EndCounts vectors{};
            vectors[3][1] = plain[3][1] = 1000;
            scalar::CountEnds(picture.Row(0), width, limits, plain);
            simd::CountEnds(picture.Row(0), width, limits, vectors);
            EXPECT_EQ(vectors, plain) << target << ", width " << width;
        }
    });
}

// What the steps along a line of `picture` give, one behind the other: plain or in vectors.
struct RaySteps {
    std::vector<std::int16_t> values;
    std::vector<std::int16_t> means;
    PixelArray pixels;
};

RaySteps TakeRaySteps(const PixelArray& picture, bool inVectors, int rays) {
    constexpr int kNodes = 5;
    constexpr std::size_t kLine = 192; // numbers from node to node
    RaySteps steps{std::vector<std::int16_t>(kNodes * kLine), std::vector<std::int16_t>(kLine), picture};
    std::vector<std::int32_t> sums(kLine);
    const auto valuesAt = [&](std::size_t node) { return steps.values.data() + node * kLine; };
    std::vector<std::int16_t> premultiplied(4 * 64);
    for (std::size_t node = 0; node < kNodes; ++node) {
        // As far apart as they may be, forwards and backwards, and close together.
        const Crossing crossing =
            node == 4 ? Crossing{45 * 65536 + 99, -65536} : Crossing{700, node == 2 ? 65536 : 15101};
        if (picture.HasAlpha()) {
            (inVectors ? simd::PremultiplyLine : scalar::PremultiplyLine)(picture.Row(static_cast<int>(node)),
                                                                          61, premultiplied.data());
            (inVectors ? simd::CrossingsPremultiplied : scalar::CrossingsPremultiplied)(
                premultiplied.data(), crossing, rays, valuesAt(node));
        } else {
            (inVectors ? simd::Crossings : scalar::Crossings)(picture.Row(static_cast<int>(node)), crossing,
                                                              rays, valuesAt(node));
        }
    }
    (inVectors ? simd::AddInterval : scalar::AddInterval)(valuesAt(0), valuesAt(1), rays, sums.data());
    const auto slide = inVectors ? simd::SlideRays : scalar::SlideRays;
    slide({valuesAt(1), valuesAt(2), valuesAt(0), valuesAt(1), false, 9000, 16384, 14, 0.25F}, rays,
          sums.data(), steps.means.data());
    slide({valuesAt(3), valuesAt(4), valuesAt(1), valuesAt(2), true, 1, 3, 0, 1.0F / 4000}, rays, sums.data(),
          steps.means.data());
    for (std::vector<std::int16_t>* const numbers : {&steps.values, &steps.means}) {
        for (std::size_t i = 0; i < numbers->size(); ++i) { // what vectors write too much
            (*numbers)[i] = static_cast<int>(i % kLine) < 4 * rays ? (*numbers)[i] : std::int16_t{0};
        }
    }
    const PixelsBetween between{70000, (rays - 4) * 65536 / 9, 9, steps.pixels.WritableRows(),
                                picture.Stride()};
    (inVectors ? simd::MixRays : scalar::MixRays)(steps.means.data(), between);
    const PixelsBetween beside{between.position, between.step, between.count,
                               between.pixels + PixelArray::kComponents, between.pixelStep};
    (inVectors ? simd::MixRaysWithAlpha : scalar::MixRaysWithAlpha)(steps.means.data(), beside);
    return steps;
}

TEST(Simd, ZoomRaysEqualPlainLoops) {
    ForEachTarget([](const char* target) {
        for (const Alpha alpha : {Alpha::None, Alpha::Random}) {
            const PixelArray picture = Random({80, 9}, alpha, 11);
            for (const int rays : {4, 5, 33, 46}) {
                const RaySteps plain = TakeRaySteps(picture, false, rays);
                const RaySteps vectors = TakeRaySteps(picture, true, rays);
                EXPECT_EQ(vectors.values, plain.values) << target << " rays " << rays;
                EXPECT_EQ(vectors.means, plain.means) << target << " rays " << rays;
                EXPECT_TRUE(SamePixels(vectors.pixels, plain.pixels)) << target << " rays " << rays;
            }
        }
    });
}

TEST(Simd, TransposedTilesEqualPlainLoops) {
    const PixelArray source = Random({40, 40}, Alpha::Random, 21);
    ForEachTarget([&](const char* target) {
        for (const Size size : {Size{1, 1}, {4, 4}, {3, 9}, {32, 7}, {17, 32}}) {
            for (const bool isUpwards : {false, true}) {
                PixelArray plain(40, 40);
                PixelArray vectors(40, 40);
                for (PixelArray* const result : {&plain, &vectors}) {
                    std::uint8_t* const rows = result->WritableRows();
                    std::fill_n(rows, 40 * result->Stride(), std::uint8_t{9});
                    const TurnTile tile{isUpwards ? source.Row(39) : source.Row(0) + 12,
                                        isUpwards ? -source.Stride() : source.Stride(),
                                        isUpwards ? rows + 39 * result->Stride() : rows + 16,
                                        isUpwards ? -result->Stride() : result->Stride(),
                                        size.width,
                                        size.height,
                                        result == &vectors};
                    (result == &vectors ? simd::Transpose : scalar::Transpose)(tile);
                }
                EXPECT_TRUE(SamePixels(vectors, plain))
                    << target << " " << size.width << " x " << size.height;
            }
        }
    });
}

// And both the formula in double precision, to a thousandth of a pixel for a thousand pixels from the centre.
TEST(Simd, TwirlEqualsPlainLoopsAndItsFormula) {
    constexpr int kCount = 61;
    constexpr float kUnit = 1024;
    ForEachTarget([](const char* target) {
        for (const float radius : {1.0F, 30.5F, 4000.0F}) {
            for (const float turns : {-1.0F, 0.25F, 0.5F, 1.0F}) {
                for (const float y : {0.0F, -radius / 2, radius}) {
                    const TwirlRow row{-radius / 2, y, 1 / radius, turns, kUnit, 7, -300};
                    std::vector<std::int32_t> plain(std::size_t{2} * kCount);
                    std::vector<std::int32_t> vectors(160);
                    scalar::LocateTwirl(row, kCount, plain.data(), plain.data() + kCount);
                    simd::LocateTwirl(row, kCount, vectors.data(), vectors.data() + 80);
                    EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + kCount, vectors.begin())) << target;
                    EXPECT_TRUE(std::equal(plain.begin() + kCount, plain.end(), vectors.begin() + 80))
                        << target;
                    for (int i = 0; i < kCount; ++i) {
                        const double x = static_cast<double>(row.x) + i;
                        const double t = std::min(std::sqrt(x * x + double{y} * y) / radius, 1.0);
                        const double angle = 2 * std::numbers::pi * turns * (1 - t * t * (3 - 2 * t));
                        const double exact = (x * std::cos(angle) - y * std::sin(angle)) * kUnit + 7;
                        EXPECT_NEAR(plain[static_cast<std::size_t>(i)], exact, 1 + radius / 1000.0) << i;
                    }
                }
            }
        }
    });
}

std::vector<std::int16_t> RandomShorts(std::size_t count, int lowest, int highest) {
    std::mt19937 generator(9);
    std::vector<std::int16_t> numbers(count);
    for (std::int16_t& number : numbers) {
        const auto range = static_cast<std::uint32_t>(highest - lowest + 1);
        number = static_cast<std::int16_t>(lowest + static_cast<int>(generator() % range));
    }
    return numbers;
}

struct Lengths {
    int from;
    int to;
};
constexpr Lengths kLengths[] = {{96, 31}, {7, 40}, {33, 33}, {600, 9}, {2, 1}};

TEST(Simd, FixedPointColumnsEqualPlainLoops) {
    constexpr int kRows = 6; // what is taken together and a rest
    for (const Lengths lengths : kLengths) {
        const FixedWeights weights(LanczosWeights(lengths.from, lengths.to), FixedWeights::Use::Columns,
                                   kMostWideBits);
        const std::ptrdiff_t stride = (lengths.from + 8) * 4;
        const std::vector<std::int16_t> sums =
            RandomShorts(static_cast<std::size_t>(kRows * stride), -16000, 20000);
        const PairedRows rows{sums.data(), stride, kRows};
        const std::ptrdiff_t length = lengths.to * 4;
        ForEachTarget([&](const char* target) {
            const auto expectSame = [&](auto plainLoop, auto vectorLoop, auto number) {
                std::vector<decltype(number)> plain(static_cast<std::size_t>(kRows * length));
                std::vector<decltype(number)> vectors(plain.size());
                plainLoop(rows, weights, plain.data(), length);
                vectorLoop(rows, weights, vectors.data(), length);
                EXPECT_EQ(vectors, plain) << target << " " << lengths.from << " to " << lengths.to;
            };
            expectSame(scalar::SumColumnsFixed, simd::SumColumnsFixed, std::uint8_t{});
            expectSame(scalar::SumColumnsToSums, simd::SumColumnsToSums, std::int16_t{});
            expectSame(scalar::SumPremultipliedColumns, simd::SumPremultipliedColumns, std::uint8_t{});
        });
    }
}

TEST(Simd, FixedPointRowsEqualPlainLoops) {
    constexpr int kCount = 96; // components
    constexpr std::size_t kMostRows = 400;
    const PixelArray noise = Random({kCount / 4, 7}, Alpha::Random);
    const std::vector<std::int16_t> premultiplied = RandomShorts(kMostRows * kCount, -32768, 32257);
    const std::vector<std::int16_t> sums = RandomShorts(kMostRows * kCount, -3000, 19000);
    for (const Lengths lengths : kLengths) {
        const FixedWeights weights(LanczosWeights(lengths.from, lengths.to), FixedWeights::Use::Rows,
                                   kMostWideBits);
        const auto taps = weights[0].weights;
        std::vector<const std::uint8_t*> byteRows;
        std::vector<const std::int16_t*> premultipliedRows;
        std::vector<const std::int16_t*> sumRows;
        for (std::size_t i = 0; i < taps.size(); ++i) {
            byteRows.push_back(noise.Row(static_cast<int>(i % 7)));
            premultipliedRows.push_back(premultiplied.data() + i % kMostRows * kCount);
            sumRows.push_back(sums.data() + i % kMostRows * kCount);
        }
        ForEachTarget([&](const char* target) {
            const auto expectSame = [&](auto plainLoop, auto vectorLoop, const auto& rows, int count,
                                        auto number) {
                std::vector<decltype(number)> plain(kCount);
                std::vector<decltype(number)> vectors(kCount);
                plainLoop(rows, taps, weights.Bits(), count, plain.data());
                vectorLoop(rows, taps, weights.Bits(), count, vectors.data());
                EXPECT_EQ(vectors, plain) << target << " " << lengths.from << " to " << lengths.to;
            };
            expectSame(scalar::SumRowsFixed, simd::SumRowsFixed, byteRows, kCount, std::int16_t{});
            expectSame(scalar::SumPremultipliedRows, simd::SumPremultipliedRows, premultipliedRows, kCount,
                       std::int16_t{});
            PixelArray plain(kCount / 4, 1);
            for (const bool streams : {false, true}) {
                PixelArray vectors(kCount / 4, 1);
                scalar::SumSumsFixed(sumRows, taps, weights.Bits(), kCount - 4, streams,
                                     plain.WritableRows());
                simd::SumSumsFixed(sumRows, taps, weights.Bits(), kCount - 4, streams,
                                   vectors.WritableRows());
                EXPECT_TRUE(SamePixels(Crop(vectors, 0, 0, {kCount / 4 - 1, 1}),
                                       Crop(plain, 0, 0, {kCount / 4 - 1, 1})))
                    << target << " " << lengths.from << " to " << lengths.to;
            }
        });
    }
    ForEachTarget([&](const char* target) {
        std::vector<std::int16_t> plain(kCount);
        std::vector<std::int16_t> vectors(kCount);
        scalar::Premultiply(noise.Row(0), kCount, plain.data());
        simd::Premultiply(noise.Row(0), kCount, vectors.data());
        EXPECT_EQ(vectors, plain) << target;
    });
}

// Fine components among which white is frequent.
FineRow RandomFines(std::size_t count, unsigned seed) {
    FineRow fines(count);
    std::mt19937 generator(seed);
    for (Fine& fine : fines) {
        fine = static_cast<Fine>(generator() % 3 == 0 ? 255 * kFineUnit : generator() % (255 * kFineUnit));
    }
    return fines;
}

constexpr std::array kFineWidths{1, 2, 15, 16, 33, 70};

// What both kinds of loops, as make(isPlain, result), make of rows of `width` pixels must be the same there.
template <class Component, class Make>
void ExpectSameHalves(int width, std::size_t second, std::size_t room, const std::string& what,
                      const Make& make) {
    std::vector<Component, LineAllocator<Component>> plain(room);
    auto vectors = plain;
    make(true, plain.data());
    make(false, vectors.data());
    const std::size_t count = static_cast<std::size_t>(width) * 2;
    for (const std::size_t begin : {std::size_t{0}, second}) {
        for (std::size_t i = begin; i < begin + count; ++i) {
            ASSERT_EQ(vectors[i], plain[i]) << what << ", width " << width << ", component " << i;
        }
    }
}

template <class Make>
void ExpectSameRows(int width, const std::string& what, const Make& make) {
    ExpectSameHalves<Fine>(width, HalfLength(width), FineLength(width), what, make);
}

template <class Make>
void ExpectSamePixels(int width, const std::string& what, const Make& make) {
    const auto count = static_cast<std::size_t>(width) * 2;
    ExpectSameHalves<std::uint8_t>(width, count, 2 * FineLength(width), what, make);
}

TEST(Simd, ConvolutionEqualsPlainLoops) {
    constexpr std::size_t kRoom = 512;
    const FineRow fines = RandomFines(40 * kRoom, 7);
    PixelArray pixels = Random({kRoom / 2, 1});
    for (int i = 0; i < 300; ++i) { // the brightest beside the darkest, in the components that are paired
        pixels.WritableRows()[i] = i / 50 % 2 == 0 ? (i % 2 == 0 ? 255 : 0) : pixels.Row(0)[i] / 128 * 255;
    }
    ForEachTarget([&](const char* target) {
        for (const double sigma : {0.07, 0.3, 1.0, 2.0, 2.9, 9.7}) {
            const HalfKernel kernel = GaussianKernel(sigma);
            std::vector<const Fine*> taps;
            for (std::size_t k = 0; k < 2 * kernel.size() - 1; ++k) {
                taps.push_back(fines.data() + k % 40 * kRoom);
            }
            const std::string what = std::string(target) + ", sigma " + std::to_string(sigma);
            for (const int width : kFineWidths) {
                ExpectSameRows(width, what + ", down", [&](bool isPlain, Fine* out) {
                    (isPlain ? scalar::Convolve : simd::Convolve)(taps.data(), kernel, out,
                                                                  FineLength(width));
                });
                ExpectSameRows(width, what + ", along", [&](bool isPlain, Fine* out) {
                    (isPlain ? scalar::ConvolveAlong : simd::ConvolveAlong)(fines.data() + 2, kernel, out,
                                                                            FineLength(width));
                });
                ExpectSameRows(width, what + ", across", [&](bool isPlain, Fine* out) {
                    (isPlain ? scalar::ConvolveAcross : simd::ConvolveAcross)(pixels.Row(0) + 4, kernel,
                                                                              width, out);
                });
                for (const int share : {0, 1, 8192, 32767}) {
                    ExpectSamePixels(width, what + ", pixels", [&](bool isPlain, std::uint8_t* out) {
                        (isPlain ? scalar::ConvolveToPixels : simd::ConvolveToPixels)(
                            taps.data(), kernel,
                            {out, width, width > 15, pixels.Row(0), static_cast<std::int16_t>(share)});
                    });
                }
            }
        }
    });
}

TEST(Simd, PyramidEqualsPlainLoops) {
    constexpr std::size_t kRoom = 1024;
    const FineRow fines = RandomFines(5 * kRoom, 5);
    std::array<const Fine*, 5> rows{};
    std::array<const std::uint8_t*, 5> pixels{};
    for (std::size_t k = 0; k < rows.size(); ++k) {
        rows[k] = fines.data() + k * kRoom;
        pixels[k] = reinterpret_cast<const std::uint8_t*>(rows[k]) + k; // not on whole vectors
    }
    ForEachTarget([&](const char* target) {
        const std::string what(target);
        for (const int width : kFineWidths) {
            ExpectSameRows(width, what + ", halving down", [&](bool isPlain, Fine* out) {
                (isPlain ? scalar::HalveDown : simd::HalveDown)(rows.data(), FineLength(width), out);
            });
            ExpectSameRows(width, what + ", halving pixels down", [&](bool isPlain, Fine* out) {
                (isPlain ? scalar::HalveDownOpaque : simd::HalveDownOpaque)(pixels.data(), width, out);
            });
            ExpectSameRows(width, what + ", halving across", [&](bool isPlain, Fine* out) {
                (isPlain ? scalar::HalveAcross : simd::HalveAcross)(fines.data(), width, out);
            });
            ExpectSameRows(2 * width, what + ", doubling across", [&](bool isPlain, Fine* out) {
                (isPlain ? scalar::DoubleAcross : simd::DoubleAcross)(fines.data(), width + 5, width, out);
            });
            for (const bool isBetween : {false, true}) {
                ExpectSameRows(width, what + ", doubling down", [&](bool isPlain, Fine* out) {
                    (isPlain ? scalar::DoubleDown : simd::DoubleDown)(rows.data(), isBetween,
                                                                      FineLength(width), out);
                });
                ExpectSamePixels(width, what + ", doubling to pixels", [&](bool isPlain, std::uint8_t* out) {
                    (isPlain ? scalar::DoubleDownToPixels : simd::DoubleDownToPixels)(
                        rows.data(), isBetween, HalfLength(width), {out, width, width > 15, nullptr, 0});
                });
            }
        }
    });
}

TEST(Simd, ShiftedRowsEqualPlainLoops) {
    PixelArray pixels = Random({100, 1});
    for (int i = 40; i < 200; ++i) { // the brightest beside the darkest, in neighbours and in pairs of them
        pixels.WritableRows()[i] = (i < 120 ? i / 4 : i / 8) % 2 == 0 ? 255 : 0;
    }
    ForEachTarget([&](const char* target) {
        for (std::size_t phase = 0; phase < kCubicTable.size(); ++phase) {
            PixelArray plain(80, 1);
            PixelArray vectors(80, 1);
            const auto row = [&](PixelArray& out) {
                return ShiftedRow{pixels.Row(0) + 4,
                                  kCubicTable[phase],
                                  80,
                                  out.WritableRows(),
                                  phase % 2 == 0 ? pixels.Row(0) : nullptr,
                                  phase % 3 == 0};
            };
            scalar::ShiftRow(row(plain));
            simd::ShiftRow(row(vectors));
            ASSERT_TRUE(SamePixels(vectors, plain)) << target << " phase " << phase;
        }
    });
}

TEST(Simd, SlidingMeansEqualPlainLoops) {
    constexpr int kRoom = 144; // a multiple of 16
    const PixelArray source = Random({kRoom / 4, 60});
    ForEachTarget([&](const char* target) {
        for (const double length : {1.5, 2.0, 7.3, 40.0, 126.0}) {
            const auto line = FixedLine::Of(Line(length));
            ASSERT_TRUE(line) << length;
            for (const int size : {4, 64, 132}) {
                PixelArray plain(kRoom / 4, 60);
                PixelArray vectors(kRoom / 4, 60);
                const auto stack = [&](PixelArray& out) {
                    return Stack{source.Row(0), source.Stride(), out.WritableRows(), out.Stride(), 60, size};
                };
                scalar::Slide(stack(plain), *line);
                simd::Slide(stack(vectors), *line);
                for (int y = 0; y < 60; ++y) {
                    ASSERT_TRUE(std::equal(plain.Row(y), plain.Row(y) + size, vectors.Row(y)))
                        << target << " length " << length << " size " << size << " row " << y;
                }
            }
        }
    });
    ForEachTarget([&](const char* target) {
        for (const double length : {1.5, 2.0, 7.3, 40.0, 126.0}) {
            const auto line = FixedLine::Of(Line(length));
            for (const int width : {1, 7, 8, 65}) {
                const PixelArray row = Random({300, 1});
                PixelArray plain(80, 1);
                PixelArray vectors(80, 1);
                const std::uint8_t* const in = row.Row(0) + std::ptrdiff_t{4} * 100;
                scalar::SlideAlong({in, plain.WritableRows(), width, false}, *line);
                simd::SlideAlong({in, vectors.WritableRows(), width, width > 8}, *line);
                ASSERT_TRUE(
                    std::equal(plain.Row(0), plain.Row(0) + std::ptrdiff_t{4} * width, vectors.Row(0)))
                    << target << " length " << length << " width " << width;
            }
        }
    });
    EXPECT_FALSE(FixedLine::Of(Line(130))) << "the sum of 130 whites does not fit";
}

TEST(Simd, SumsOfPairsEqualPlainLoops) {
    std::vector<WideComponent> in(3000);
    std::mt19937 generator(11);
    for (WideComponent& component : in) {
        component = static_cast<WideComponent>(generator() % 3 == 0 ? 255 * kWideUnit
                                                                    : generator() % (255 * kWideUnit));
    }
    std::vector<WeightedPair> pairs;
    for (int left = 65536; left > 0;) {
        const int weight = std::min<int>(left, static_cast<int>(generator() % 9000) + 1);
        pairs.push_back({static_cast<std::ptrdiff_t>(generator() % 1000), static_cast<std::int16_t>(weight)});
        left -= weight;
    }
    ForEachTarget([&](const char* target) {
        for (const std::size_t count : {4U, 20U, 68U, 400U}) {
            std::vector<WideComponent> plain(count);
            std::vector<WideComponent> vectors(count);
            scalar::SumPairs(in.data() + 1000, pairs, count, plain.data());
            simd::SumPairs(in.data() + 1000, pairs, count, vectors.data());
            EXPECT_EQ(vectors, plain) << target << " count " << count;
        }
    });
}

TEST(Simd, SlantedMotionIsTheSameOnEveryProcessor) {
    for (const int width : {1, 15, 64, 131, 643}) {
        for (const Alpha alpha : {Alpha::None, Alpha::Random}) {
            const PixelArray source = Random({width, 70}, alpha);
            std::optional<PixelArray> first;
            ForEachTarget([&](const char* target) {
                const PixelArray result = MotionBlur(source, 30, 12.5);
                EXPECT_TRUE(SamePixels(result, first.value_or(result))) << target << " width " << width;
                first = result;
            });
        }
    }
}

TEST(Simd, EmbossingEqualsPlainLoops) {
    ForEachTarget([](const char* target) {
        for (const int width : {1, 15, 64, 131, 2049}) {
            constexpr std::size_t kRoom = 2064;
            const PixelArray source = Random({width, 3}, Alpha::Random);
            std::array<std::vector<WideLuma>, 3> plain;
            std::array<std::vector<WideLuma>, 3> vectors;
            for (std::size_t y = 0; y < plain.size(); ++y) {
                plain[y].resize(kRoom);
                vectors[y].resize(kRoom);
                scalar::WideLumaRow(source.Row(static_cast<int>(y)), width, plain[y].data());
                simd::WideLumaRow(source.Row(static_cast<int>(y)), width, vectors[y].data());
                EXPECT_TRUE(std::equal(plain[y].begin(), plain[y].begin() + width, vectors[y].begin()))
                    << target << " luma, width " << width;
            }
            const FourRows rows{plain[0].data(), plain[1].data(), plain[2].data(), plain[0].data()};
            const FourWeights weights{-2300, 28000, 9000, -1932};
            std::vector<WideLuma> plainSum(kRoom);
            std::vector<WideLuma> vectorSum(kRoom);
            scalar::SumFour(rows, weights, width, plainSum.data());
            simd::SumFour(rows, weights, width, vectorSum.data());
            EXPECT_TRUE(std::equal(plainSum.begin(), plainSum.begin() + width, vectorSum.begin()))
                << target << " sums, width " << width;
            for (const float gain : {1.0F, -0.37F, 40.0F}) {
                const auto relief = [&](auto make) {
                    PixelArray result(width, 1);
                    make(ReliefRow{rows,
                                   {plainSum.data(), plain[2].data(), plain[1].data(), plain[0].data()},
                                   weights,
                                   {-2000, 21000, 15000, -1232},
                                   gain,
                                   source.Row(1),
                                   result.WritableRows(),
                                   width,
                                   width > 64});
                    result.SetHasAlpha(true);
                    return result;
                };
                EXPECT_TRUE(SamePixels(relief(simd::MakeRelief), relief(scalar::MakeRelief)))
                    << target << " relief, width " << width;
            }
        }
    });
}

} // namespace
} // namespace pictorel::engine::test
