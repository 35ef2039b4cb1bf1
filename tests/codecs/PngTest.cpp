// PNG: every colour type and depth, colour spaces, and files that are damaged in one place or another.
#include "MadeExif.h"
#include "MadeProfiles.h"
#include "PictureSupport.h"
#include "imaging/codecs/Exif.h"

#include <zlib.h>

#include <string>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

ByteBuffer Chunk(std::string_view type, const ByteBuffer& data) {
    const ByteBuffer named = Bytes().Text(type).Append(data).Done();
    return Bytes()
        .Be32({static_cast<std::int64_t>(data.size())})
        .Append(named)
        .Be32({static_cast<std::int64_t>(crc32(0, named.data(), static_cast<uInt>(named.size())))})
        .Done();
}

ByteBuffer Deflated(const ByteBuffer& data) {
    uLongf size = compressBound(data.size());
    ByteBuffer out(size);
    compress(out.data(), &size, data.data(), data.size());
    out.resize(size);
    return out;
}

struct Recipe {
    std::int64_t width = 2;
    std::int64_t height = 1;
    int bits = 8;
    int colourType = 2; // 0 grey, 2 RGB, 3 palette, 4 grey and alpha, 6 RGB and alpha
    int interlace = 0;
    ByteBuffer extra{}; // whole chunks between header and pixels
    ByteBuffer rows{};  // with their filter bytes
    ByteBuffer after{}; // whole chunks behind the pixels
};

ByteBuffer Header(const Recipe& recipe) {
    return Bytes()
        .Be32({recipe.width, recipe.height})
        .U8({recipe.bits, recipe.colourType, 0, 0, recipe.interlace})
        .Done();
}

ByteBuffer MakePng(const Recipe& recipe) {
    return Bytes()
        .Text("\x89PNG\r\n\x1A\n")
        .Append(Chunk("IHDR", Header(recipe)))
        .Append(recipe.extra)
        .Append(Chunk("IDAT", Deflated(recipe.rows)))
        .Append(recipe.after)
        .Append(Chunk("IEND", {}))
        .Done();
}

struct Case {
    const char* name;
    Recipe recipe;
    std::string expected;
};

void ExpectAll(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(SpelledFile(MakePng(c.recipe)), c.expected) << c.name;
    }
}

ByteBuffer Palette() {
    return Chunk("PLTE", {255, 0, 0, 0, 255, 0, 0, 0, 255});
}

TEST(Png, ReadsEveryColourTypeAndDepth) {
    ExpectAll({
        {"grey 1", {.bits = 1, .colourType = 0, .rows = {0, 0x40}}, "000000 FFFFFF"},
        {"grey 2", {.bits = 2, .colourType = 0, .rows = {0, 0x60}}, "555555 AAAAAA"},
        {"grey 4", {.bits = 4, .colourType = 0, .rows = {0, 0x2F}}, "222222 FFFFFF"},
        {"grey 8", {.colourType = 0, .rows = {0, 7, 200}}, "070707 C8C8C8"},
        {"grey 16, rounded",
         {.bits = 16, .colourType = 0, .rows = {0, 0x7F, 0xFF, 0x00, 0x81}},
         "7F7F7F 010101"},
        {"RGB 8", {.rows = {0, 1, 2, 3, 4, 5, 6}}, "010203 040506"},
        {"RGB 16", {.width = 1, .bits = 16, .rows = {0, 1, 0x80, 2, 0x82, 2, 0x83}}, "010203"},
        {"palette 1", {.bits = 1, .colourType = 3, .extra = Palette(), .rows = {0, 0x40}}, "FF0000 00FF00"},
        {"palette 2", {.bits = 2, .colourType = 3, .extra = Palette(), .rows = {0, 0x90}}, "0000FF 00FF00"},
        {"palette 8", {.colourType = 3, .extra = Palette(), .rows = {0, 2, 0}}, "0000FF FF0000"},
        {"palette index too large",
         {.colourType = 3, .extra = Palette(), .rows = {0, 2, 9}},
         "0000FF 000000"},
        {"grey and alpha", {.colourType = 4, .rows = {0, 9, 255, 8, 1}}, "090909FF 08080801"},
        {"RGB and alpha", {.width = 1, .colourType = 6, .rows = {0, 1, 2, 3, 4}}, "01020304"},
        {"alpha that is opaque", {.width = 1, .colourType = 6, .rows = {0, 1, 2, 3, 255}}, "010203"},
        {"RGB and alpha 16",
         {.width = 1, .bits = 16, .colourType = 6, .rows = {0, 1, 1, 2, 2, 3, 3, 0x80, 0x80}},
         "01020380"},
        {"interlaced",
         {.height = 2, .colourType = 0, .interlace = 1, .rows = {0, 1, 0, 2, 0, 3, 4}},
         "010101 020202/030303 040404"},
        {"interlaced 16",
         {.height = 2,
          .bits = 16,
          .colourType = 0,
          .interlace = 1,
          .rows = {0, 1, 1, 0, 2, 2, 0, 3, 3, 4, 4}},
         "010101 020202/030303 040404"},
    });
}

TEST(Png, ReadsTransparentColours) {
    ExpectAll({
        {"palette",
         {.colourType = 3,
          .extra = Bytes().Append(Palette()).Append(Chunk("tRNS", {0, 128})).Done(),
          .rows = {0, 1, 2}},
         "00FF0080 0000FFFF"},
        {"grey",
         {.bits = 1, .colourType = 0, .extra = Chunk("tRNS", {0, 1}), .rows = {0, 0x40}},
         "000000FF FFFFFF00"},
        {"RGB",
         {.extra = Chunk("tRNS", {0, 1, 0, 2, 0, 3}), .rows = {0, 1, 2, 3, 4, 5, 6}},
         "01020300 040506FF"},
        {"RGB 16",
         {.width = 1, .bits = 16, .extra = Chunk("tRNS", {1, 1, 2, 2, 3, 3}), .rows = {0, 1, 1, 2, 2, 3, 3}},
         "01020300"},
    });
}

ByteBuffer ProfileChunk(const ByteBuffer& icc) {
    return Chunk("iCCP", Bytes().Text("p").U8({0, 0}).Append(Deflated(icc)).Done());
}
ByteBuffer GammaChunk(std::int64_t gamma) {
    return Chunk("gAMA", Bytes().Be32({gamma}).Done());
}

TEST(Png, ConvertsOtherColourSpacesToSrgb) {
    const ByteBuffer wide = ProfileChunk(WideRgbProfile());
    const ByteBuffer primaries =
        Chunk("cHRM", Bytes().Be32({31270, 32900, 64000, 33000, 21000, 71000, 15000, 6000}).Done());
    const auto pixel = [](const ByteBuffer& extra, int bits = 8) {
        return SpelledFile(MakePng({.width = 1,
                                    .bits = bits,
                                    .extra = extra,
                                    .rows = bits == 8 ? ByteBuffer{0, 120, 140, 100}
                                                      : ByteBuffer{0, 120, 120, 140, 140, 100, 100}}));
    };
    const std::string converted = pixel(wide);
    EXPECT_NE(converted, "788C64");
    EXPECT_EQ(pixel(wide, 16), converted);
    EXPECT_EQ(pixel(ProfileChunk(SrgbProfile())), "788C64");
    EXPECT_EQ(pixel(Bytes().Append(GammaChunk(45471)).Append(primaries).Done()), converted);
    EXPECT_EQ(pixel(GammaChunk(45455)), "788C64");
    EXPECT_EQ(pixel(Bytes().Append(Chunk("sRGB", {0})).Append(GammaChunk(100000)).Done()), "788C64");
    EXPECT_EQ(pixel(ProfileChunk({1, 2, 3})), "788C64");
    EXPECT_FALSE(Read(MakePng({.extra = wide, .rows = {0, 1, 2, 3, 4, 5, 6}})).Details().icc.empty());

    // Linear light: half is 188 in sRGB. A profile of greys does the same to greys, alpha passes by.
    const ByteBuffer linear = ProfileChunk(GreyProfile(1.0));
    ExpectAll({
        {"linear gamma",
         {.colourType = 0, .extra = GammaChunk(100000), .rows = {0, 128, 255}},
         "BCBCBC FFFFFF"},
        {"linear 16",
         {.width = 1, .bits = 16, .colourType = 0, .extra = GammaChunk(100000), .rows = {0, 128, 0}},
         "BCBCBC"},
        {"grey profile", {.colourType = 0, .extra = linear, .rows = {0, 128, 255}}, "BCBCBC FFFFFF"},
        {"grey profile and alpha",
         {.width = 1, .colourType = 4, .extra = linear, .rows = {0, 128, 64}},
         "BCBCBC40"},
        {"grey profile, alpha, 16",
         {.width = 1, .bits = 16, .colourType = 4, .extra = linear, .rows = {0, 128, 0, 64, 0}},
         "BCBCBC40"},
    });
}

TEST(Png, TurnsThePictureUprightAndKeepsItsDetails) {
    const ByteBuffer exif = MadeExif({.orientation = 6});
    const ByteBuffer resolution = Chunk("pHYs", Bytes().Be32({2835, 5906}).U8({1}).Done());
    for (const bool atEnd : {false, true}) {
        Recipe recipe{.colourType = 0, .extra = resolution, .rows = {0, 10, 20}};
        (atEnd ? recipe.after : recipe.extra) =
            Bytes().Append(atEnd ? ByteBuffer{} : resolution).Append(Chunk("eXIf", exif)).Done();
        const PixelArray picture = Read(MakePng(recipe));
        EXPECT_EQ(Spelled(picture), "0A0A0A/141414");
        EXPECT_EQ(picture.Details().dotsPerInchX, 150); // turned along
        EXPECT_EQ(picture.Details().dotsPerInchY, 72);
        EXPECT_EQ(ExifOrientation(picture.Details().exif), 1);

        const PixelArray again = Read(Write("png", picture));
        EXPECT_TRUE(SamePixels(picture, again));
        EXPECT_EQ(picture.Details(), again.Details());
    }
}

// A file of 64 x 64 noisy greys in one data chunk, so that damage can be put at a known place in it.
ByteBuffer NoisyPng(int interlace = 0) {
    ByteBuffer rows;
    std::uint32_t random = 1;
    const int rowCount = interlace == 0 ? 64 : 1024; // more than enough for all passes
    for (int i = 0; i < rowCount * 65; ++i) {
        random = random * 1664525 + 1013904223;
        rows.push_back(i % 65 == 0 || interlace != 0 ? std::uint8_t{0}
                                                     : static_cast<std::uint8_t>(random >> 24));
    }
    return MakePng({.width = 64, .height = 64, .colourType = 0, .interlace = interlace, .rows = rows});
}

TEST(Png, ShowsWhatADamagedFileHolds) {
    const ByteBuffer whole = NoisyPng();
    const PixelArray expected = Read(whole);
    ByteBuffer cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(whole.size()) / 2);
    const PixelArray half = Read(cut);
    EXPECT_EQ(std::memcmp(half.Row(20), expected.Row(20), half.RowBytes()), 0);
    const ByteBuffer white(half.RowBytes(), 0xFF);
    EXPECT_EQ(std::memcmp(half.Row(63), white.data(), white.size()), 0);

    ByteBuffer badSum = whole; // of the data chunk: all rows come before it
    badSum[badSum.size() - 13] ^= 1;
    EXPECT_TRUE(SamePixels(Read(badSum), expected));

    const ByteBuffer interlaced = NoisyPng(1);
    cut.assign(interlaced.begin(), interlaced.end() - 24);
    EXPECT_EQ(Read(cut).Width(), 64);
}

TEST(Png, SkipsDamagedExtrasAndRefusesDamagedEssentials) {
    ByteBuffer badExtra = GammaChunk(100000);
    badExtra.back() ^= 1;
    ByteBuffer badPalette = Palette();
    badPalette.back() ^= 1;
    ExpectAll({
        {"gamma with a wrong checksum",
         {.colourType = 0, .extra = badExtra, .rows = {0, 128, 255}},
         "808080 FFFFFF"},
        {"palette with a wrong checksum",
         {.colourType = 3, .extra = badPalette, .rows = {0, 1, 2}},
         kUnsupported},
        {"no palette", {.colourType = 3, .rows = {0, 1, 2}}, kUnsupported},
        {"no such colour type", {.colourType = 5, .rows = {0, 1, 2}}, kUnsupported},
        {"no such depth", {.bits = 3, .colourType = 0, .rows = {0, 1, 2}}, kUnsupported},
        {"no rows", {.rows = {}}, kUnsupported},
        {"width 0", {.width = 0, .rows = {0}}, kUnsupported},
        {"too large", {.width = 40000, .height = 40000, .rows = {0}}, kTooLarge},
        {"large without the bytes for it", {.width = 30000, .height = 30000, .rows = {0}}, kUnsupported},
        {"unknown extra chunk",
         {.colourType = 0, .extra = Chunk("abCd", {1, 2}), .rows = {0, 128, 255}},
         "808080 FFFFFF"},
        {"frames of an animation",
         {.colourType = 0,
          .extra = Chunk("acTL", {0, 0, 0, 2, 0, 0, 0, 0}),
          .rows = {0, 128, 255},
          .after = Chunk("fdAT", {0, 0, 0, 1, 9, 9})},
         "808080 FFFFFF"},
    });
    EXPECT_EQ(SpelledFile(Bytes().Text("\x89PNG\r\n\x1A\n").Done()), kUnsupported);
}

TEST(Png, WritesAlphaOnlyWhereItIsNeeded) {
    constexpr std::size_t kColourTypeAt = 25;
    PixelArray picture = MakePicture(40, 30, true);
    EXPECT_EQ(Write("png", picture)[kColourTypeAt], 6);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            picture.WritableRows()[y * picture.Stride() + x * 4 + 3] = 255;
        }
    }
    EXPECT_EQ(Write("png", picture)[kColourTypeAt], 2);
}

// Several bands, each filtered and deflated by itself, of which some gain by strings and some do not.
TEST(Png, WritesLargePicturesWhole) {
    PixelArray picture = MakePicture(1500, 1400);
    std::memset(picture.WritableRows() + 500 * picture.Stride(), 0xFF,
                static_cast<std::size_t>(picture.Stride()) * 400);
    EXPECT_TRUE(SamePixels(picture, Read(Write("png", picture))));
}

} // namespace
} // namespace pictorel::codecs::testing
