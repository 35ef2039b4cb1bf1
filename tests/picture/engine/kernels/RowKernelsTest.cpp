// The kernels of the rooms base, point, rank and geometry: rows of bytes and pixels on their own.
#include "picture/engine/kernels/KernelsTest.h"
#include "picture/engine/kernels/base/RowKernels.h"
#include "picture/engine/kernels/geometry/TurnKernels.h"
#include "picture/engine/kernels/point/EndKernels.h"
#include "picture/engine/kernels/point/MapKernels.h"
#include "picture/engine/kernels/point/PointKernels.h"
#include "picture/engine/kernels/rank/RankKernels.h"

#include <algorithm>

namespace pictorel::engine {
namespace {

using test::Alpha;
using test::Draw;
using test::Pixel;
using test::Random;
using test::Size;

constexpr Size kSizes[] = {{1, 1}, {7, 5}, {33, 17}, {257, 3}, {400, 300}, {2049, 2}};

TEST_F(KernelsTest, CopiedRows) {
    const PixelArray source = Random({300, 1}, Alpha::Random);
    for (const std::size_t size : {1U, 15U, 64U, 67U, 1000U}) {
        for (const bool streams : {false, true}) {
            for (const std::size_t begin : {0U, 4U}) { // on a whole vector and not
                ExpectSame<RowKernels>(std::to_string(size) + " bytes", [&](const RowKernels& kernels) {
                    PixelArray result = test::Constant({300, 1}, {9, 9, 9, 9});
                    kernels.CopyRow(source.Row(0) + 3, size, streams, result.WritableRows() + begin,
                                    streams ? source.Row(0) : nullptr);
                    return result;
                });
            }
        }
        ExpectSame<RowKernels>(std::to_string(size) + " sums", [&](const RowKernels& kernels) {
            auto sums = RandomNumbers<std::vector<std::uint16_t>>(size, 0, 65535);
            kernels.AddBytes(source.Row(0) + 1, size, sums.data());
            return sums;
        });
    }
}

struct PointCase {
    std::string name;
    std::function<void(const PointKernels&, const std::uint8_t*, std::uint8_t*, int)> run;
};

std::vector<PointCase> PointCases() {
    std::vector<PointCase> cases;
    const auto add = [&](const char* name, auto kernel, auto parameter) {
        cases.push_back({name, [=](const PointKernels& kernels, auto* in, auto* out, int width) {
                             (kernels.*kernel)(in, out, width, parameter);
                         }});
    };
    cases.push_back({"invert", [](const PointKernels& kernels, auto* in, auto* out, int width) {
                         kernels.InvertRow(in, out, width);
                     }});
    add("add", &PointKernels::AddRow, ClampedSum{{0, 255, 30, 0}, {55, 255, 255, 255}, {200, 1, 226, 0}});
    for (const int level : {0, 1, 128, 255, 256}) {
        add("threshold", &PointKernels::ThresholdRow, level);
    }
    for (const float amount : {-1.0F, -0.83F, -0.5F, -0.01F, 0.01F, 0.3F, 0.5F, 1.0F}) {
        add("saturation", &PointKernels::SaturationRow, SaturationChange(1 + amount));
        add("lightness", &PointKernels::LightnessRow, amount);
    }
    for (const HueTurn& turn : {HueTurn{0, 1092}, {0, 32768}, {1, 0}, {2, 0}, {3, 21845}, {5, 65535}}) {
        add("hue", &PointKernels::HueRow, turn);
    }
    return cases;
}

TEST_F(KernelsTest, PointRows) {
    for (const Size size : kSizes) {
        const PixelArray source = Random(size, Alpha::Random, 3);
        for (const PointCase& c : PointCases()) {
            ExpectSame<PointKernels>(
                c.name + ", width " + std::to_string(size.width), [&](const PointKernels& kernels) {
                    return MapRowsOf(source,
                                     [&](auto* in, auto* out, int width) { c.run(kernels, in, out, width); });
                });
        }
    }
}

// Every colour there is on a grid of odd spacing, since rounding luma is exact only by a narrow argument.
TEST_F(KernelsTest, Luma) {
    const PixelArray colours = Draw({256, 64 * 52}, [](int x, int y) {
        return Pixel{static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y % 64 * 4 + x % 4),
                     static_cast<std::uint8_t>(y / 64 * 5), 255};
    });
    ExpectSame<PointKernels>("luma", [&](const PointKernels& kernels) {
        std::vector<std::uint8_t> luma(256 * static_cast<std::size_t>(colours.Height()));
        for (int y = 0; y < colours.Height(); ++y) {
            kernels.LumaRow(colours.Row(y), luma.data() + 256 * static_cast<std::ptrdiff_t>(y), 256);
        }
        return luma;
    });
}

TEST_F(KernelsTest, Maps) {
    ColourMaps maps{};
    std::array<std::int32_t, 256> change{};
    for (std::size_t i = 0; i < change.size(); ++i) {
        maps.blue[i] = static_cast<std::uint8_t>(i * 7 + 3);
        maps.green[i] = static_cast<std::uint8_t>(i * i + 91);
        maps.red[i] = static_cast<std::uint8_t>(255 - i / 3);
        change[i] = static_cast<std::int32_t>(i * 37 % 511) - 255;
    }
    const SectionedMaps sectionedMaps(maps);
    const SectionedChange sectionedChange(change);
    for (const Size size : kSizes) {
        const PixelArray source = Random(size, Alpha::Random, 3);
        const std::string what = "width " + std::to_string(size.width);
        ExpectSame<MapKernels>("map, " + what, [&](const MapKernels& kernels) {
            return MapRowsOf(source, [&](auto* in, auto* out, int width) {
                kernels.MapRow(in, out, width, sectionedMaps);
            });
        });
        ExpectSame<MapKernels>("change by luma, " + what, [&](const MapKernels& kernels) {
            return MapRowsOf(source, [&](auto* in, auto* out, int width) {
                kernels.AddByLumaRow(in, out, width, sectionedChange);
            });
        });
    }
}

TEST_F(KernelsTest, CountsAtBothEnds) {
    const EndLimits limits{{{0, 1, 2, 0},
                            {1, 128, 255, 255},
                            {255, 200, 3, 1},
                            {7, 7, 7, 7},
                            {255, 1, 0, 9},
                            {254, 127, 129, 0},
                            {1, 255, 30, 3},
                            {0, 0, 0, 0}}};
    for (const int width : {1, 15, 16, 67, 5001}) { // the last counts a byte further than 255
        const PixelArray picture = Random({width, 1});
        ExpectSame<EndKernels>("width " + std::to_string(width), [&](const EndKernels& kernels) {
            EndCounts counts{};
            counts[3][1] = 1000; // is added to
            kernels.CountEnds(picture.Row(0), width, limits, counts);
            std::vector<std::uint64_t> all;
            for (const auto& limit : counts) {
                all.insert(all.end(), limit.begin(), limit.end());
            }
            return all;
        });
    }
}

TEST_F(KernelsTest, SpreadWindows) {
    const PixelArray picture = Random({400, 1}, Alpha::Random, 5);
    for (const WindowStep& step : {WindowStep{2, 0, 4}, {3, 4, 8}, {4, 52, 131}}) {
        for (const Rank rank : {Rank::Brightest, Rank::Darkest}) {
            for (const std::size_t count : {1U, 63U, 64U, 517U}) {
                ExpectSame<RankKernels>(
                    "parts " + std::to_string(step.parts) + ", count " + std::to_string(count),
                    [&](const RankKernels& kernels) {
                        std::vector<std::uint8_t> row(picture.Row(0) + 4, picture.Row(0) + 1004);
                        kernels.SpreadWindow(rank, step, count, row.data(), row.data());
                        row.resize(count);
                        return row;
                    });
            }
        }
    }
}

TEST_F(KernelsTest, RanksOfRows) {
    const PixelArray picture = Random({400, 3}, Alpha::Random, 5);
    const std::uint8_t* const rows[] = {picture.Row(0), picture.Row(1), picture.Row(2), picture.Row(0) + 16};
    for (const int width : {1, 15, 16, 17, 331}) {
        const std::string what = "width " + std::to_string(width);
        const auto count = 4 * static_cast<std::size_t>(width);
        for (const int share : {0, 1, 16384, 32767}) {
            ExpectSame<RankKernels>("mixed, " + what, [&](const RankKernels& kernels) {
                PixelArray result(width, 1);
                kernels.MixRow(picture.Row(0) + 4, picture.Row(1) + 8, share,
                               {picture.Row(2), result.WritableRows(), width, share % 2 == 1});
                return result;
            });
        }
        for (const Rank rank : {Rank::Brightest, Rank::Darkest}) {
            for (const std::size_t reached : {2U, 3U, 4U}) {
                ExpectSame<RankKernels>("columns, " + what, [&](const RankKernels& kernels) {
                    std::vector<std::uint8_t> columns(2 * count);
                    kernels.ExtremeOfRows(rank, std::span(rows, reached), 12, count, columns.data(),
                                          columns.data() + count);
                    return columns;
                });
            }
            ExpectSame<RankKernels>("joined, " + what, [&](const RankKernels& kernels) {
                PixelArray result(width, 1);
                kernels.JoinRow(rank, {3, 4, 8}, picture.Row(0) + 4,
                                {picture.Row(2), result.WritableRows(), width, false});
                return result;
            });
        }
    }
}

TEST_F(KernelsTest, TurnedTilesAndMirroredRows) {
    const PixelArray source = Random({40, 40}, Alpha::Random, 21);
    for (const Size size : {Size{1, 1}, {4, 4}, {3, 9}, {32, 7}, {17, 32}}) {
        for (const bool isUpwards : {false, true}) {
            for (const bool streams : {false, true}) {
                ExpectSame<TurnKernels>(
                    std::to_string(size.width) + " x " + std::to_string(size.height),
                    [&](const TurnKernels& kernels) {
                        PixelArray result = test::Constant({40, 40}, {9, 9, 9, 9});
                        std::uint8_t* const rows = result.WritableRows();
                        kernels.Transpose({isUpwards ? source.Row(39) : source.Row(0) + 12,
                                           isUpwards ? -source.Stride() : source.Stride(),
                                           isUpwards ? rows + 39 * result.Stride() : rows + 16,
                                           isUpwards ? -result.Stride() : result.Stride(), size.width,
                                           size.height, streams});
                        kernels.EndStreaming();
                        return result;
                    });
            }
        }
    }
    for (const Size size : kSizes) {
        const PixelArray picture = Random(size, Alpha::Random, 3);
        ExpectSame<TurnKernels>("width " + std::to_string(size.width), [&](const TurnKernels& kernels) {
            return MapRowsOf(picture, kernels.MirrorRow);
        });
    }
}

} // namespace
} // namespace pictorel::engine
