// PNG: every colour type and depth, colour spaces, and files that are damaged in one place or another.
#include "MadeExif.h"
#include "MadePng.h"
#include "MadeProfiles.h"
#include "PictureSupport.h"
#include "picture/codecs/Exif.h"

#include <random>
#include <string>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

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

// A plain file is inflated at once; with a wrong check sum behind its pixels libpng reads it. Both see the
// same.
TEST(Png, PlainFilesAreReadAsLibpngReadsThem) {
    std::mt19937 random(5);
    for (const int colourType : {2, 6}) {
        for (int filters = 0; filters < 6; ++filters) { // each alone, then all in turn
            const int width = 37;
            const int height = 11;
            ByteBuffer rows;
            for (int y = 0; y < height; ++y) {
                rows.push_back(static_cast<std::uint8_t>(filters < 5 ? filters : y % 5));
                for (int i = 0; i < width * (colourType == 2 ? 3 : 4); ++i) {
                    rows.push_back(static_cast<std::uint8_t>(random() >> 24));
                }
            }
            ByteBuffer file =
                MakePng({.width = width, .height = height, .colourType = colourType, .rows = rows});
            const PixelArray plain = Read(file);
            constexpr std::size_t kBehindData = 4 + 12; // its chunk's check sum and the last chunk
            file[file.size() - kBehindData - 1] ^= 1;
            EXPECT_TRUE(SamePixels(plain, Read(file))) << "colours " << colourType << ", filters " << filters;
        }
    }
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

// Of plain files libpng sees no more than what stands before the pixels.
TEST(Png, TurnsPlainPicturesByTheirSoundDetails) {
    ByteBuffer sound = Chunk("eXIf", MadeExif({.orientation = 6}));
    ByteBuffer damaged = sound;
    damaged.back() ^= 1;
    for (const bool atEnd : {false, true}) {
        Recipe recipe{.rows = {0, 10, 10, 10, 20, 20, 20}};
        (atEnd ? recipe.after : recipe.extra) = sound;
        EXPECT_EQ(SpelledFile(MakePng(recipe)), "0A0A0A/141414") << atEnd;
        (atEnd ? recipe.after : recipe.extra) = damaged;
        EXPECT_EQ(SpelledFile(MakePng(recipe)), "0A0A0A 141414") << atEnd;
    }
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
