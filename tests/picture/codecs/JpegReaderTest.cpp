// JPEG files read: held against libjpeg on one thread, bit for bit.
#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/Exif.h"
#include "picture/codecs/MadeExif.h"
#include "picture/codecs/MadeJpeg.h"
#include "picture/codecs/MadeProfiles.h"
#include "picture/codecs/jpeg/JpegCodec.h"
#include "picture/codecs/jpeg/JpegRestartStrips.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace pictorel::codecs {
namespace {

using testing::Difference;
using testing::ExifPayload;
using testing::JpegRecipe;
using testing::JpegSpace;
using testing::LibraryPixels;
using testing::MadeGradientJpeg;
using testing::MadeJpeg;
using testing::MadePicture;
using testing::Solid;

struct StripCase {
    const char* name;
    JpegRecipe recipe;
    bool cut; // whether the file can be decoded in strips
};

const std::vector<StripCase>& StripCases() {
    static const std::vector<StripCase> cases{
        {"4:4:4, marker each row", {.restartRows = 1}, true},
        {"4:4:4, marker each third row", {.restartRows = 3}, true},
        {"R, G, B", {.space = JpegSpace::Rgb, .restartRows = 2}, true},
        {"grey", {.space = JpegSpace::Grey, .restartRows = 1}, true},
        {"4:2:2", {.sampling = {2, 1}, .restartRows = 1}, true},
        {"4:1:1", {.sampling = {4, 1}, .restartRows = 1}, true},
        {"inks", {.space = JpegSpace::Cmyk, .restartRows = 1}, true},
        {"marker each MCU", {.restartInterval = 1}, true},
        {"marker at odd places", {.restartInterval = 7}, true},
        {"4:2:0", {.sampling = {2, 2}, .restartRows = 1}, false},
        {"4:4:0", {.sampling = {1, 2}, .restartRows = 1}, false},
        {"progressive", {.restartRows = 1, .progressive = true}, false},
        {"arithmetic", {.restartRows = 1, .arithmetic = true}, false},
        {"no markers", {}, false},
    };
    return cases;
}

TEST(JpegReader, StripsGiveTheSamePixels) {
    for (const StripCase& test : StripCases()) {
        for (const auto& [width, height] : {std::pair(611, 703), std::pair(1601, 1021)}) {
            const ByteBuffer file = MadeJpeg(MadePicture(width, height), test.recipe);
            const bool cut = !PlanStrips(file, JpegSegments(file)).strips.empty();
            EXPECT_EQ(cut, test.cut) << test.name;
            if (test.recipe.space != JpegSpace::Cmyk) {
                EXPECT_EQ(Difference(ReadJpeg(file, {}), LibraryPixels(file)), 0) << test.name;
                continue;
            }
            PixelArray expected = LibraryPixels(file);
            std::uint8_t* const rows = expected.WritableRows();
            const ColourConverter inks(SampleLayout::CmykInverted8, {});
            for (int y = 0; y < expected.Height(); ++y) {
                inks.ConvertRow(expected.Row(y), rows + y * expected.Stride(), expected.Width());
            }
            EXPECT_EQ(Difference(ReadJpeg(file, {}), expected), 0) << test.name;
        }
    }
}

TEST(JpegReader, OddRestartMarkersAreNotCut) {
    const ByteBuffer whole = MadeJpeg(MadePicture(611, 703), {.restartRows = 1});
    const std::size_t scan = JpegSegments(whole).back().end();
    std::vector<std::size_t> markers;
    for (std::size_t i = scan; i + 1 < whole.size(); ++i) {
        if (whole[i] == 0xFF && whole[i + 1] >= 0xD0 && whole[i + 1] <= 0xD7) {
            markers.push_back(i);
        }
    }
    ASSERT_EQ(markers.size(), 87U);
    ByteBuffer renumbered = whole;
    renumbered[markers[20] + 1] = 0xD0 + (20 + 3) % 8;
    ByteBuffer missing = whole;
    missing.erase(missing.begin() + static_cast<std::ptrdiff_t>(markers[20]),
                  missing.begin() + static_cast<std::ptrdiff_t>(markers[20]) + 2);
    ByteBuffer extra = whole;
    const std::array<std::uint8_t, 2> restart{0xFF, 0xD4};
    extra.insert(extra.begin() + static_cast<std::ptrdiff_t>(markers[19]), restart.begin(), restart.end());
    const ByteBuffer cutOff(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(markers[50]));
    for (const ByteBuffer& odd : {renumbered, missing, extra, cutOff}) {
        EXPECT_TRUE(PlanStrips(odd, JpegSegments(odd)).strips.empty());
        const PixelArray picture = ReadJpeg(odd, {});
        EXPECT_EQ(Difference(picture, LibraryPixels(odd), 19 * 8), 0);
    }
    // Damage inside an interval leaves the markers in order: the pixels are still those of one go.
    ByteBuffer damaged = whole;
    for (std::size_t i = markers[30] + 5; i < markers[30] + 60; ++i) {
        damaged[i] = 0xAA;
    }
    EXPECT_FALSE(PlanStrips(damaged, JpegSegments(damaged)).strips.empty());
    EXPECT_EQ(Difference(ReadJpeg(damaged, {}), LibraryPixels(damaged)), 0);
}

TEST(JpegReader, EveryKindOfFile) {
    const PixelArray picture = MadePicture(203, 157);
    for (const bool progressive : {false, true}) {
        for (const bool arithmetic : {false, true}) {
            for (const auto& sampling :
                 {std::array{1, 1}, std::array{2, 2}, std::array{2, 1}, std::array{1, 2}}) {
                for (const JpegSpace space : {JpegSpace::Grey, JpegSpace::Rgb, JpegSpace::YCbCr}) {
                    const ByteBuffer file = MadeJpeg(picture, {.space = space,
                                                               .sampling = sampling,
                                                               .progressive = progressive,
                                                               .arithmetic = arithmetic});
                    ASSERT_TRUE(IsJpeg(file));
                    EXPECT_EQ(Difference(ReadJpeg(file, {}), LibraryPixels(file)), 0);
                }
            }
        }
    }
}

// Samplings that divide the picture's and those that do not, which the library leaves to its caller.
TEST(JpegReader, EverySampling) {
    constexpr int kWidth = 101;
    constexpr int kHeight = 77;
    for (const testing::Samplings& samplings :
         {testing::Samplings{{{4, 1}, {1, 1}, {1, 1}}}, testing::Samplings{{{1, 1}, {2, 2}, {1, 2}}},
          testing::Samplings{{{3, 2}, {2, 1}, {1, 1}}}, testing::Samplings{{{2, 3}, {1, 2}, {1, 1}}},
          testing::Samplings{{{4, 1}, {3, 1}, {1, 1}}}, testing::Samplings{{{1, 2}, {1, 3}, {2, 1}}}}) {
        for (const JpegSpace space : {JpegSpace::Rgb, JpegSpace::YCbCr}) {
            for (const bool progressive : {false, true}) {
                const PixelArray read =
                    ReadJpeg(MadeGradientJpeg(kWidth, kHeight, samplings,
                                              {.space = space, .progressive = progressive}),
                             {});
                ASSERT_EQ(read.Width(), kWidth);
                ASSERT_EQ(read.Height(), kHeight);
                double largest = 0;
                for (int y = 0; y < kHeight; ++y) {
                    for (int x = 0; x < kWidth; ++x) {
                        const auto level = [&](int c) { return double(testing::GradientLevel(c, x, y)); };
                        const std::uint8_t* const bgra = read.Row(y) + std::ptrdiff_t{4} * x;
                        std::array<double, 3> rgb{level(0), level(1), level(2)};
                        if (space == JpegSpace::YCbCr) {
                            rgb = {level(0) + 1.402 * (level(2) - 128),
                                   level(0) - 0.344136 * (level(1) - 128) - 0.714136 * (level(2) - 128),
                                   level(0) + 1.772 * (level(1) - 128)};
                        }
                        for (std::size_t c = 0; c < rgb.size(); ++c) {
                            const double wanted = std::clamp(rgb[c], 0.0, 255.0);
                            largest = std::max(largest, std::abs(wanted - bgra[2 - c]));
                        }
                        EXPECT_EQ(bgra[3], 255);
                    }
                }
                EXPECT_LE(largest, 6) << samplings[0][0] << 'x' << samplings[0][1];
            }
        }
    }
}

TEST(JpegReader, InksWithAndWithoutAdobesInversion) {
    // Stored inks 255, 105, 55, 205: with Adobe's marker 255 is no ink, else 255 is all of it.
    const PixelArray inks = Solid(40, 40, {255, 105, 55, 205});
    for (const JpegSpace space : {JpegSpace::Cmyk, JpegSpace::Ycck}) {
        const PixelArray inverted = ReadJpeg(MadeJpeg(inks, {.space = space, .quality = 100}), {});
        EXPECT_LE(Difference(inverted, Solid(40, 40, {44, 84, 205, 255})), 2);
    }
    const PixelArray plain =
        ReadJpeg(MadeJpeg(inks, {.space = JpegSpace::Cmyk, .quality = 100, .adobeMarker = false}), {});
    EXPECT_LE(Difference(plain, Solid(40, 40, {39, 29, 0, 255})), 2);
    // The ink profile of these tests makes lightness of cyan alone: L* of 128 / 255 is level 119.
    const PixelArray half = Solid(40, 40, {127, 0, 0, 0});
    const PixelArray profiled = ReadJpeg(
        MadeJpeg(half, {.space = JpegSpace::Cmyk, .quality = 100, .icc = testing::InkProfile()}), {});
    EXPECT_LE(Difference(profiled, Solid(40, 40, {119, 119, 119, 255})), 3);
    EXPECT_TRUE(ColourConverter(SampleLayout::Bgra8, profiled.Details().icc).IsIdentity());
}

TEST(JpegReader, ProfilesAreApplied) {
    const ByteBuffer wide = testing::WideRgbProfile();
    const PixelArray rose = Solid(33, 21, {100, 100, 150, 255});
    const PixelArray read =
        ReadJpeg(MadeJpeg(rose, {.space = JpegSpace::Rgb, .quality = 100, .icc = wide}), {});
    EXPECT_LE(Difference(read, Solid(33, 21, {100, 100, 167, 255})), 2);
    EXPECT_EQ(read.Details().icc, ProfileAfterConversion(wide));

    const PixelArray grey = Solid(33, 21, {128, 128, 128, 255});
    const PixelArray readGrey = ReadJpeg(
        MadeJpeg(grey, {.space = JpegSpace::Grey, .quality = 100, .icc = testing::GreyProfile(1.0)}), {});
    EXPECT_LE(Difference(readGrey, Solid(33, 21, {188, 188, 188, 255})), 1);

    // Chunks that are missing or doubled are no profile; pixels stay.
    ByteBuffer large = wide;
    large.resize(150000);
    const ByteBuffer file = MadeJpeg(rose, {.space = JpegSpace::Rgb, .quality = 100, .icc = large});
    EXPECT_LE(Difference(ReadJpeg(file, {}), Solid(33, 21, {100, 100, 167, 255})), 2);
    std::vector<JpegSegment> chunks = JpegSegments(file);
    std::erase_if(chunks, [](const JpegSegment& s) { return s.marker != jpeg::kApp2; });
    ASSERT_EQ(chunks.size(), 3U);
    ByteBuffer missing = file;
    missing.erase(missing.begin() + static_cast<std::ptrdiff_t>(chunks[1].offset),
                  missing.begin() + static_cast<std::ptrdiff_t>(chunks[1].end()));
    ByteBuffer doubled = file;
    doubled[chunks[1].offset + 4 + 12] = 1;
    for (const ByteBuffer& broken : {missing, doubled}) {
        const PixelArray untouched = ReadJpeg(broken, {});
        EXPECT_LE(Difference(untouched, rose), 1);
        EXPECT_TRUE(untouched.Details().icc.empty());
    }
}

TEST(JpegReader, OrientationIsApplied) {
    const PixelArray stored = MadePicture(123, 77);
    for (const bool littleEndian : {true, false}) {
        for (int orientation = 1; orientation <= 8; ++orientation) {
            const ByteBuffer payload = ExifPayload({littleEndian, orientation, 300, 150, 2});
            const ByteBuffer file = MadeJpeg(stored, {.density = 72, .markers = {{jpeg::kApp1, payload}}});
            const PixelArray read = ReadJpeg(file, {});
            EXPECT_EQ(Difference(read, ApplyOrientation(LibraryPixels(file), orientation)), 0) << orientation;
            EXPECT_EQ(ExifOrientation(read.Details().exif), 1);
            EXPECT_EQ(read.Details().dotsPerInchX, orientation < 5 ? 300 : 150);
            EXPECT_EQ(read.Details().dotsPerInchY, orientation < 5 ? 150 : 300);
        }
    }
}

TEST(JpegReader, ResolutionOfTheJfifHeader) {
    const PixelArray picture = MadePicture(9, 9);
    const auto resolution = [&](int density, int unit) {
        return ReadJpeg(MadeJpeg(picture, {.density = density, .densityUnit = unit}), {})
            .Details()
            .dotsPerInchX;
    };
    EXPECT_DOUBLE_EQ(resolution(240, 1), 240);
    EXPECT_DOUBLE_EQ(resolution(100, 2), 254);
    EXPECT_DOUBLE_EQ(resolution(0, 1), 0);
}

} // namespace
} // namespace pictorel::codecs
