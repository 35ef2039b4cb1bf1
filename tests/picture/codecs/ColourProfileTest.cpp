// Conversion of file samples to sRGB, against colours worked out by hand from the definitions of the spaces.
#include "picture/codecs/ColourProfile.h"
#include "picture/codecs/MadeProfiles.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

namespace pictorel::codecs {
namespace {

using testing::GreyProfile;
using testing::InkProfile;
using testing::SrgbProfile;
using testing::WideRgbProfile;
using Pixel = std::array<int, 4>; // blue, green, red, alpha

template <class Sample>
Pixel Converted(SampleLayout layout, const ByteBuffer& profile, const std::vector<Sample>& samples) {
    std::array<std::uint8_t, 4> bgra{};
    ColourConverter(layout, profile).ConvertRow(samples.data(), bgra.data(), 1);
    return {bgra[0], bgra[1], bgra[2], bgra[3]};
}

void ExpectNear(const Pixel& actual, const Pixel& expected, int tolerance, const std::string& what) {
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(actual[i], expected[i], tolerance) << what << ", component " << i;
    }
}

TEST(ColourProfile, PlainRulesWithoutProfile) {
    const std::vector<std::uint8_t> damaged(200, 0x41);
    for (const ByteBuffer& none : {ByteBuffer{}, damaged, ByteBuffer(3)}) {
        using V8 = std::vector<std::uint8_t>;
        using V16 = std::vector<std::uint16_t>;
        EXPECT_EQ(Converted(SampleLayout::Grey8, none, V8{77}), (Pixel{77, 77, 77, 255}));
        EXPECT_EQ(Converted(SampleLayout::Grey16, none, V16{0x8080}), (Pixel{128, 128, 128, 255}));
        EXPECT_EQ(Converted(SampleLayout::Rgb16, none, V16{65535, 257 * 7 + 100, 129}),
                  (Pixel{1, 7, 255, 255}));
        EXPECT_EQ(Converted(SampleLayout::Rgba16, none, V16{0, 257, 514, 128}), (Pixel{2, 1, 0, 0}));
        EXPECT_EQ(Converted(SampleLayout::Bgra8, none, V8{1, 2, 3, 4}), (Pixel{1, 2, 3, 4}));
        EXPECT_EQ(Converted(SampleLayout::Cmyk8, none, V8{255, 0, 55, 51}), (Pixel{160, 204, 0, 255}));
        EXPECT_EQ(Converted(SampleLayout::CmykInverted8, none, V8{0, 255, 200, 204}),
                  (Pixel{160, 204, 0, 255}));
        EXPECT_EQ(Converted(SampleLayout::Cmyk16, none, V16{65535, 0, 55 * 257, 51 * 257}),
                  (Pixel{160, 204, 0, 255}));
    }
}

TEST(ColourProfile, LabIsTakenAsDefined) {
    // L* a* b* of D50-adapted sRGB: white 100 0 0; mid grey 53.39 0 0 (level 127.6); red 54.29 80.81 69.89.
    const auto lab8 = [](double l, double a, double b) {
        const auto byte = [](double v) { return static_cast<std::uint8_t>(std::lround(v)); };
        return std::vector<std::uint8_t>{byte(l * 2.55), byte(a + 128), byte(b + 128)};
    };
    const auto lab16 = [](double l, double a, double b) {
        const auto word = [](double v) { return static_cast<std::uint16_t>(std::lround(v)); };
        return std::vector<std::uint16_t>{word(l * 655.35), word((a + 128) * 256), word((b + 128) * 256)};
    };
    ExpectNear(Converted(SampleLayout::Lab8, {}, lab8(100, 0, 0)), {255, 255, 255, 255}, 1, "white");
    ExpectNear(Converted(SampleLayout::Lab8, {}, lab8(53.39, 0, 0)), {127, 127, 127, 255}, 2, "grey");
    ExpectNear(Converted(SampleLayout::Lab8, {}, lab8(54.29, 80.81, 69.89)), {0, 0, 255, 255}, 4, "red");
    ExpectNear(Converted(SampleLayout::Lab16, {}, lab16(100, 0, 0)), {255, 255, 255, 255}, 1, "white 16");
    ExpectNear(Converted(SampleLayout::Lab16, {}, lab16(53.39, 0, 0)), {128, 128, 128, 255}, 1, "grey 16");
    ExpectNear(Converted(SampleLayout::Lab16, {}, lab16(54.29, 80.81, 69.89)), {0, 0, 255, 255}, 1, "red 16");
}

TEST(ColourProfile, WideSpaceBecomesSrgb) {
    // From the two spaces' definitions: greys keep their level; (150, 100, 100) has linear (0.3114, 0.1276,
    // 0.1276), in sRGB primaries (0.3846, 0.1276, 0.1276).
    const ByteBuffer wide = WideRgbProfile();
    const auto bgra = [](std::uint8_t b, std::uint8_t g, std::uint8_t r, std::uint8_t a) {
        return std::vector<std::uint8_t>{b, g, r, a};
    };
    ExpectNear(Converted(SampleLayout::Bgra8, wide, bgra(128, 128, 128, 9)), {128, 128, 128, 9}, 1, "grey");
    ExpectNear(Converted(SampleLayout::Bgra8, wide, bgra(100, 100, 150, 255)), {100, 100, 167, 255}, 2,
               "rose");
    ExpectNear(Converted(SampleLayout::Bgra8, wide, bgra(0, 255, 0, 0)), {0, 255, 0, 0}, 1, "beyond sRGB");
    const std::vector<std::uint16_t> rose{150 * 257, 100 * 257, 100 * 257, 99 * 257};
    ExpectNear(Converted(SampleLayout::Rgb16, wide, rose), {100, 100, 167, 255}, 2, "rose 16");
    ExpectNear(Converted(SampleLayout::Rgba16, wide, rose), {100, 100, 167, 99}, 2, "rose 16 with alpha");
    // Linear light: half of it is level 188 of sRGB.
    ExpectNear(Converted(SampleLayout::Grey8, GreyProfile(1.0), std::vector<std::uint8_t>{128}),
               {188, 188, 188, 255}, 1, "linear grey");
    ExpectNear(Converted(SampleLayout::Grey16, GreyProfile(1.0), std::vector<std::uint16_t>{32896}),
               {188, 188, 188, 255}, 1, "linear grey 16");
}

TEST(ColourProfile, InkGoesThroughItsProfile) {
    const ByteBuffer ink = InkProfile(); // cyan is lightness: L* 50 is level 119
    const std::vector<std::uint8_t> half{128, 255, 255, 255};
    const std::vector<std::uint8_t> halfInverted{127, 0, 0, 0};
    const std::vector<std::uint16_t> half16{32768, 65535, 0, 65535};
    ExpectNear(Converted(SampleLayout::Cmyk8, ink, half), {119, 119, 119, 255}, 2, "ink");
    ExpectNear(Converted(SampleLayout::CmykInverted8, ink, halfInverted), {119, 119, 119, 255}, 2,
               "inverted");
    ExpectNear(Converted(SampleLayout::Cmyk16, ink, half16), {119, 119, 119, 255}, 2, "16 bit");
}

TEST(ColourProfile, KindsThatDoNotFitAreIgnored) {
    const std::vector<std::uint8_t> pixel{10, 20, 30, 40};
    EXPECT_EQ(Converted(SampleLayout::Bgra8, InkProfile(), pixel), (Pixel{10, 20, 30, 40}));
    EXPECT_EQ(Converted(SampleLayout::Grey8, WideRgbProfile(), pixel), (Pixel{10, 10, 10, 255}));
    EXPECT_EQ(Converted(SampleLayout::Cmyk8, WideRgbProfile(), std::vector<std::uint8_t>{255, 255, 255, 0}),
              (Pixel{0, 0, 0, 255}));
}

TEST(ColourProfile, SrgbIsKnownByWhatItDoes) {
    const cmsCIExyYTRIPLE srgbPrimaries{{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
    EXPECT_TRUE(ColourConverter(SampleLayout::Bgra8, SrgbProfile()).IsIdentity());
    EXPECT_TRUE(ColourConverter(SampleLayout::Bgra8, {}).IsIdentity());
    EXPECT_FALSE(ColourConverter(SampleLayout::Bgra8, WideRgbProfile()).IsIdentity());
    EXPECT_FALSE(ColourConverter(SampleLayout::Bgra8, testing::RgbProfile(srgbPrimaries, 1.8)).IsIdentity());
}

TEST(ColourProfile, ProfileKeptDescribesThePixels) {
    const ByteBuffer srgb = SrgbProfile();
    EXPECT_EQ(ProfileAfterConversion(srgb), srgb);
    EXPECT_TRUE(ProfileAfterConversion({}).empty());
    EXPECT_TRUE(ProfileAfterConversion(ByteBuffer(500, 7)).empty());
    for (const ByteBuffer& other : {WideRgbProfile(), GreyProfile(2.2), InkProfile()}) {
        const ByteBuffer kept = ProfileAfterConversion(other);
        ASSERT_FALSE(kept.empty());
        EXPECT_NE(kept, other);
        EXPECT_TRUE(ColourConverter(SampleLayout::Bgra8, kept).IsIdentity());
        EXPECT_EQ(kept, ProfileAfterConversion(other));
    }
}

TEST(ColourProfile, WholePicturesOfOddSizes) {
    const ByteBuffer wide = WideRgbProfile();
    PixelArray picture(1201, 307); // several bands
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width() * 4; ++x) {
            rows[y * picture.Stride() + x] = static_cast<std::uint8_t>(x * 7 + y * 13);
        }
    }
    const PixelArray before = picture;
    ConvertToSrgb(picture, wide);
    EXPECT_FALSE(picture.SharesPixelsWith(before));
    EXPECT_EQ(picture.Details().icc, ProfileAfterConversion(wide));
    const ColourConverter converter(SampleLayout::Bgra8, wide);
    std::vector<std::uint8_t> expected(picture.RowBytes());
    for (int y = 0; y < picture.Height(); ++y) {
        converter.ConvertRow(before.Row(y), expected.data(), before.Width());
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), picture.Row(y))) << "row " << y;
    }
    PixelArray unchanged = before;
    ConvertToSrgb(unchanged, SrgbProfile());
    EXPECT_TRUE(unchanged.SharesPixelsWith(before));
}

TEST(ColourProfile, DamagedProfilesDoNoHarm) {
    const std::vector<std::uint8_t> pixel{10, 20, 30, 40};
    for (const ByteBuffer& whole : {WideRgbProfile(), InkProfile()}) {
        for (std::size_t i = 0; i < whole.size(); i += whole.size() / 30) {
            ByteBuffer damaged = whole;
            damaged[i] ^= 0xA5;
            Converted(SampleLayout::Bgra8, damaged, pixel);
            Converted(SampleLayout::Cmyk8, damaged, pixel);
            Converted(SampleLayout::Cmyk8, ByteBuffer(whole.begin(), whole.begin() + static_cast<int>(i)),
                      pixel);
        }
    }
}

} // namespace
} // namespace pictorel::codecs
