// HEIF and AVIF files made by libheif's encoders, against the colours that went into them.
#include "MadeExif.h"
#include "MadeHeif.h"
#include "MadeProfiles.h"
#include "PictureSupport.h"
#include "picture/codecs/Exif.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>

namespace pictorel::codecs::testing {
namespace {

// The largest difference between the picture and what the recipe says, in levels.
double WorstDifference(const PixelArray& picture, const HeifRecipe& recipe) {
    double worst = 0;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            const auto colour = HeifColour(recipe, x, y);
            const std::uint8_t* const pixel = picture.Row(y) + std::ptrdiff_t{4} * x;
            const double expected[] = {colour[2], colour[1], colour[0], colour[3]};
            for (int i = 0; i < 4; ++i) {
                worst = std::max(worst, std::abs(pixel[i] - 255 * expected[i]));
            }
        }
    }
    return worst;
}

struct Case {
    const char* name;
    HeifRecipe recipe;
    double tolerance = 6;
};

TEST(Heif, ReadsPlanesOfEveryKind) {
    const Case cases[] = {
        {"HEVC 4:2:0", {}},
        {"HEVC 4:2:2", {.chroma = 422}},
        {"HEVC 4:4:4", {.chroma = 444}},
        {"HEVC of odd sizes", {.width = 61, .height = 43}},
        {"HEVC 10 bits", {.bits = 10}},
        {"HEVC 12 bits", {.bits = 12, .chroma = 444}},
        {"HEVC greys", {.chroma = 400}},
        {"HEVC with alpha", {.withAlpha = true}},
        {"HEVC, colour multiplied by its alpha", {.withAlpha = true, .isPremultiplied = true}, 14},
        {"AV1 4:2:0", {.isAv1 = true}},
        {"AV1 4:2:2", {.isAv1 = true, .chroma = 422}},
        {"AV1 12 bits", {.isAv1 = true, .bits = 12}},
        {"AV1 of odd sizes with alpha", {.isAv1 = true, .width = 61, .height = 43, .withAlpha = true}},
        {"AV1, green, blue, red", {.isAv1 = true, .chroma = 444, .space = Cicp{1, 13, 0, true}}},
    };
    for (const Case& c : cases) {
        const PixelArray picture = Read(MakeHeif(c.recipe));
        ASSERT_EQ(picture.Width(), c.recipe.width) << c.name;
        ASSERT_EQ(picture.Height(), c.recipe.height) << c.name;
        EXPECT_EQ(picture.HasAlpha(), c.recipe.withAlpha) << c.name;
        EXPECT_LE(WorstDifference(picture, c.recipe), c.tolerance) << c.name;
        EXPECT_TRUE(picture.Details().icc.empty()) << c.name;
    }
}

// Files that another encoder made of a PNG file of the corpus, in ways that libheif's cannot.
TEST(Heif, ReadsPlanesOfAnotherEncoder) {
    const auto corpus = [](const char* name) {
        std::ifstream in(std::string(PICTOREL_CORPUS) + "/" + name, std::ios::binary);
        return ByteBuffer{std::istreambuf_iterator<char>(in), {}};
    };
    const struct {
        const char* file;
        const char* of;
        int tolerance;
    } cases[] = {
        {"heif/avif-ycgco", "png/large", 12},    {"heif/avif-limited", "png/large", 10},
        {"heif/avif-444-10", "png/large", 10},   {"heif/avif-rgb", "png/large", 0},
        {"heif/avif-alpha-10", "png/alpha", 14},
    };
    for (const auto& c : cases) {
        const PixelArray expected = Read(corpus(c.of));
        const PixelArray picture = Read(corpus(c.file));
        ASSERT_EQ(picture.Width(), expected.Width()) << c.file;
        EXPECT_EQ(picture.HasAlpha(), expected.HasAlpha()) << c.file;
        int worst = 0;
        for (int y = 0; y < expected.Height(); ++y) {
            for (int i = 0; i < 4 * expected.Width(); ++i) {
                worst = std::max(worst, std::abs(picture.Row(y)[i] - expected.Row(y)[i]));
            }
        }
        EXPECT_LE(worst, c.tolerance) << c.file;
    }
}

TEST(Heif, TurnsOnceWhateverExifSays) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        HeifRecipe recipe{.isAv1 = true, .exif = MadeExif({.orientation = orientation})};
        const PixelArray upright = Read(MakeHeif(recipe)); // EXIF alone turns nothing
        recipe.orientation = orientation;
        const PixelArray turned = Read(MakeHeif(recipe));
        EXPECT_LE(WorstDifference(upright, recipe), 6);
        EXPECT_TRUE(SamePixels(turned, ApplyOrientation(upright, orientation))) << orientation;
        EXPECT_EQ(ExifOrientation(turned.Details().exif), 1);
    }
}

TEST(Heif, KeepsExifAndXmp) {
    const ByteBuffer packet = Bytes().Text("<rdf:RDF>Tea</rdf:RDF>").Done();
    const PixelArray read =
        Read(MakeHeif({.exif = MadeExif({.resolutionX = 300, .resolutionY = 300}), .xmp = packet}));
    EXPECT_EQ(read.Details().xmp, packet);
    EXPECT_EQ(read.Details().exif, MadeExif({.resolutionX = 300, .resolutionY = 300, .thumbnail = false}));
    EXPECT_EQ(read.Details().dotsPerInchX, 300);
}

TEST(Heif, ConvertsToSrgb) {
    const HeifRecipe plain{.bits = 10, .chroma = 444};
    const PixelArray before = Read(MakeHeif(plain));
    HeifRecipe displayP3 = plain;
    displayP3.space = Cicp{12, 13, 6, true};
    HeifRecipe wide = plain;
    wide.icc = WideRgbProfile();
    for (const HeifRecipe& recipe : {displayP3, wide}) {
        const PixelArray after = Read(MakeHeif(recipe));
        const std::uint8_t* const was = before.Row(10) + 4 * 50;
        const std::uint8_t* const is = after.Row(10) + 4 * 50;
        EXPECT_GT(is[2], was[2] + 5) << "red is stronger in sRGB";
        EXPECT_FALSE(after.Details().icc.empty());
    }
    HeifRecipe srgb = plain;
    srgb.icc = SrgbProfile();
    const PixelArray same = Read(MakeHeif(srgb));
    EXPECT_LE(WorstDifference(same, plain), 6);
    EXPECT_EQ(same.Details().icc, srgb.icc);
    HeifRecipe greys{.isAv1 = true, .chroma = 400, .icc = GreyProfile(1.0)};
    const PixelArray lighter = Read(MakeHeif(greys));
    const double linear = HeifColour(greys, 32, 24)[0];
    EXPECT_NEAR(lighter.Row(24)[4 * 32], 255 * (1.055 * std::pow(linear, 1 / 2.4) - 0.055), 6);
}

TEST(Heif, IsKnownByItsBrands) {
    const auto type = [](std::string_view brands) {
        return Bytes()
            .Be32({static_cast<std::int64_t>(8 + brands.size())})
            .Text("ftyp")
            .Text(brands)
            .Zeros(40)
            .Done();
    };
    for (const std::string_view brands :
         {std::string_view("heic\0\0\0\0", 8), std::string_view("avif\0\0\0\0mif1", 12),
          std::string_view("isom\0\0\0\0mp42avis", 16)}) {
        ASSERT_NE(FindCodecByContent(type(brands)), nullptr);
        EXPECT_EQ(FindCodecByContent(type(brands))->extension, "HEIF");
    }
    // Films, and a brand that is none since it stands behind the box.
    for (const std::string_view brands :
         {std::string_view("isom\0\0\0\0mp42", 12), std::string_view("qt  heic", 8)}) {
        EXPECT_EQ(FindCodecByContent(type(brands)), nullptr);
    }
}

TEST(Heif, RefusesWhatIsNotWhole) {
    for (const bool isAv1 : {false, true}) {
        const ByteBuffer file = MakeHeif({.isAv1 = isAv1});
        for (const std::size_t length : {file.size() / 4, file.size() / 2}) {
            EXPECT_EQ(SpelledFile(ByteView(file).first(length)), kUnsupported) << isAv1 << ' ' << length;
        }
        // The sizes stand in the boxes named ispe, behind version and flags.
        for (const auto& [width, expected] : {std::pair{40000, kTooLarge}, {30000, kUnsupported}}) {
            ByteBuffer large = file;
            constexpr std::string_view kName = "ispe";
            const ByteBuffer size = Bytes().Be32({width, 30000}).Done();
            for (auto at = large.begin();;) {
                at = std::search(at, large.end(), kName.begin(), kName.end());
                if (at == large.end()) {
                    break;
                }
                at = std::copy(size.begin(), size.end(), at + 8);
            }
            EXPECT_EQ(SpelledFile(large).substr(0, 7), expected) << isAv1 << ' ' << width;
        }
    }
}

} // namespace
} // namespace pictorel::codecs::testing
