// Bitmaps: headers of every version, odd palettes and masks, run lengths, and files that are not quite right.
#include "MadeProfiles.h"
#include "PictureSupport.h"
#include "picture/codecs/bmp/Bmp.h"

#include <optional>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

// What a bitmap is made of; a test names only what matters to it.
struct Recipe {
    int headerBytes = 40;
    std::int64_t width = 2;
    std::int64_t height = 2;
    int bits = 24;
    int compression = 0;
    std::int64_t declaredColours = 0;
    std::int64_t sizeOfPixels = 0;
    std::vector<std::int64_t> masks{}; // inside or after the header, as its size asks
    ByteBuffer palette{};
    std::size_t gap = 0;
    std::optional<std::int64_t> pixelOffset{}; // other than the true one
    ByteBuffer pixels{};
};

ByteBuffer MakeBmp(const Recipe& recipe) {
    Bytes info;
    info.Le32({recipe.headerBytes});
    if (recipe.headerBytes == 12) {
        info.Le16({recipe.width, recipe.height, 1, recipe.bits});
    } else {
        info.Le32({recipe.width, recipe.height}).Le16({1, recipe.bits});
        info.Le32({recipe.compression, recipe.sizeOfPixels, 2835, 5906, recipe.declaredColours, 0});
        for (const std::int64_t mask : recipe.masks) {
            info.Le32({mask});
        }
    }
    ByteBuffer header = info.Done();
    const auto headerBytes = static_cast<std::size_t>(recipe.headerBytes);
    if (header.size() < headerBytes || headerBytes < 40) { // masks of a 40-byte header stand behind it
        header.resize(headerBytes);
    }
    const std::size_t offset = 14 + header.size() + recipe.palette.size() + recipe.gap;
    return Bytes()
        .Text("BM")
        .Le32({static_cast<std::int64_t>(offset + recipe.pixels.size()), 0})
        .Le32({recipe.pixelOffset.value_or(static_cast<std::int64_t>(offset))})
        .Append(header)
        .Append(recipe.palette)
        .Zeros(recipe.gap)
        .Append(recipe.pixels)
        .Done();
}

ByteBuffer RgbPalette() {
    return {0, 0, 255, 0, 0, 255, 0, 0, 255, 0, 0, 0, 255, 255, 255, 0};
} // red green blue white
ByteBuffer RgbPalette3() {
    return {0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255};
}
ByteBuffer Four24() {
    return {255, 0, 0, 255, 255, 255, 0, 0, 0, 0, 255, 0, 255, 0, 0, 0};
} // bottom row first
constexpr const char* kFourColours = "FF0000 00FF00/0000FF FFFFFF";
ByteBuffer Four8() {
    return {2, 3, 0, 0, 0, 1, 0, 0};
}

TEST(Bmp, ReadsEveryKindOfFile) {
    ExpectReads<Recipe>(
        MakeBmp,
        {
            {"OS/2 1.x",
             {.headerBytes = 12, .bits = 8, .palette = RgbPalette3(), .pixels = Four8()},
             kFourColours},
            {"OS/2 2.x, shortest",
             {.headerBytes = 16, .bits = 8, .palette = RgbPalette(), .pixels = Four8()},
             kFourColours},
            {"OS/2 2.x, longest",
             {.headerBytes = 64, .bits = 8, .palette = RgbPalette(), .pixels = Four8()},
             kFourColours},
            {"24 bits", {.pixels = Four24()}, kFourColours},
            {"top row first", {.height = -2, .pixels = Four24()}, "0000FF FFFFFF/FF0000 00FF00"},
            {"version 2", {.headerBytes = 52, .pixels = Four24()}, kFourColours},
            {"version 3", {.headerBytes = 56, .pixels = Four24()}, kFourColours},
            {"version 4", {.headerBytes = 108, .pixels = Four24()}, kFourColours},
            {"version 5", {.headerBytes = 124, .pixels = Four24()}, kFourColours},
            {"1 bit",
             {.width = 9, .height = 1, .bits = 1, .palette = RgbPalette(), .pixels = {0x40, 0x80, 0, 0}},
             "FF0000 00FF00 FF0000 FF0000 FF0000 FF0000 FF0000 FF0000 00FF00"},
            {"2 bits",
             {.width = 5, .height = 1, .bits = 2, .palette = RgbPalette(), .pixels = {0x1B, 0x40, 0, 0}},
             "FF0000 00FF00 0000FF FFFFFF 00FF00"},
            {"4 bits",
             {.width = 3, .height = 1, .bits = 4, .palette = RgbPalette(), .pixels = {0x12, 0x30, 0, 0}},
             "00FF00 0000FF FFFFFF"},
            {"16 bits, five each",
             {.width = 3, .height = 1, .bits = 16, .pixels = {0x00, 0x7C, 0x10, 0x42, 0xFF, 0xFF, 0, 0}},
             "FF0000 848484 FFFFFF"},
            {"32 bits, nothing in the fourth byte",
             {.width = 1, .height = 2, .bits = 32, .pixels = {1, 2, 3, 0, 4, 5, 6, 0}},
             "060504/030201"},
            {"32 bits, alpha in the fourth byte",
             {.width = 1, .height = 2, .bits = 32, .pixels = {1, 2, 3, 0, 4, 5, 6, 128}},
             "06050480/03020100"},
            {"32 bits, all opaque",
             {.width = 1, .height = 1, .bits = 32, .pixels = {1, 2, 3, 255}},
             "030201"},
            {"64 bits of linear light",
             {.width = 2,
              .height = 1,
              .bits = 64,
              .pixels = {0x00, 0x20, 0x00, 0x08, 0xFF, 0xFF, 0x00, 0x20, 0, 0, 0, 0, 0x00, 0x60, 0x00, 0x10}},
             "0089FFFF FF000080"},
            {"a header longer than any yet", {.headerBytes = 200, .pixels = Four24()}, kFourColours},
        });
}

TEST(Bmp, ScalesFieldsOfAnyWidth) {
    ExpectReads<Recipe>(MakeBmp, {
                                     {"5-6-5 after the header",
                                      {.width = 2,
                                       .height = 1,
                                       .bits = 16,
                                       .compression = 3,
                                       .masks = {0xF800, 0x07E0, 0x1F},
                                       .pixels = {0x00, 0x04, 0xFF, 0xFF}},
                                      "008200 FFFFFF"},
                                     {"5-6-5 inside a version 2 header",
                                      {.headerBytes = 52,
                                       .width = 2,
                                       .height = 1,
                                       .bits = 16,
                                       .compression = 3,
                                       .masks = {0xF800, 0x07E0, 0x1F},
                                       .pixels = {0x00, 0xF8, 0x1F, 0x00}},
                                      "FF0000 0000FF"},
                                     {"4-4-4-4 with alpha after the header",
                                      {.width = 2,
                                       .height = 1,
                                       .bits = 16,
                                       .compression = 6,
                                       .masks = {0xF00, 0xF0, 0xF, 0xF000},
                                       .pixels = {0x23, 0x81, 0xFF, 0xFF}},
                                      "11223388 FFFFFFFF"},
                                     {"alpha of a version 3 header",
                                      {.headerBytes = 56,
                                       .width = 1,
                                       .height = 1,
                                       .bits = 32,
                                       .compression = 3,
                                       .masks = {0xFF, 0xFF00, 0xFF0000, 0xFF000000},
                                       .pixels = {0x11, 0x22, 0x33, 0x44}},
                                      "11223344"},
                                     {"alpha that was never set",
                                      {.headerBytes = 56,
                                       .width = 1,
                                       .height = 1,
                                       .bits = 32,
                                       .compression = 3,
                                       .masks = {0xFF, 0xFF00, 0xFF0000, 0xFF000000},
                                       .pixels = {0x11, 0x22, 0x33, 0x00}},
                                      "112233"},
                                     {"10 bits each, rounded",
                                      {.width = 1,
                                       .height = 1,
                                       .bits = 32,
                                       .compression = 3,
                                       .masks = {0x3FF00000, 0xFFC00, 0x3FF},
                                       .pixels = {0x02, 0x0C, 0xF0, 0x3F}},
                                      "FF0100"},
                                     {"masks that were never set",
                                      {.width = 1,
                                       .height = 1,
                                       .bits = 32,
                                       .compression = 3,
                                       .masks = {0, 0, 0},
                                       .pixels = {1, 2, 3, 0}},
                                      "030201"},
                                     {"24 and 1 and 0 bits",
                                      {.width = 1,
                                       .height = 1,
                                       .bits = 32,
                                       .compression = 3,
                                       .masks = {0xFFFFFF, 0x80000000, 0},
                                       .pixels = {0x00, 0x00, 0x80, 0x80}},
                                      "80FF00"},
                                 });
}

TEST(Bmp, DecodesRunLengths) {
    const auto rle = [](int bits, ByteBuffer pixels) {
        return Recipe{.width = 4,
                      .bits = bits,
                      .compression = bits == 8 ? 1 : (bits == 4 ? 2 : 4),
                      .palette = bits == 24 ? ByteBuffer{} : RgbPalette(),
                      .pixels = std::move(pixels)};
    };
    const std::string red = "FF0000 FF0000 FF0000 FF0000";
    const std::string mixed = "FF0000 00FF00 0000FF FFFFFF";
    const std::string white = "FFFFFF FFFFFF FFFFFF FFFFFF";
    ExpectReads<Recipe>(
        MakeBmp,
        {
            {"runs", rle(8, {4, 0, 0, 0, 4, 2, 0, 1}), "0000FF 0000FF 0000FF 0000FF/" + red},
            {"absolute and padding", rle(8, {0, 3, 0, 1, 2, 0, 1, 3, 0, 0, 4, 0, 0, 1}), red + "/" + mixed},
            {"4-bit run alternates", rle(4, {4, 0x01, 0, 0, 3, 0x22, 0, 1}),
             "0000FFFF 0000FFFF 0000FFFF FF000000/FF0000FF 00FF00FF FF0000FF 00FF00FF"},
            {"4-bit absolute", rle(4, {0, 4, 0x01, 0x23, 0, 0, 4, 0, 0, 1}), red + "/" + mixed},
            {"24 bits", rle(24, {4, 0, 0, 255, 0, 0, 0, 3, 0, 0, 255, 0, 255, 0, 255, 0, 0, 0, 0, 1}),
             "FF0000FF 00FF00FF 0000FFFF 00000000/FF0000FF FF0000FF FF0000FF FF0000FF"},
            {"what a delta skips is transparent, as what the end leaves out",
             rle(8, {1, 0, 0, 2, 1, 1, 2, 1, 0, 1}),
             "FF000000 FF000000 00FF00FF 00FF00FF/FF0000FF FF000000 FF000000 FF000000"},
            {"an end at once", rle(24, {0, 1}), kUnsupported},
            {"top row first",
             [&] {
                 Recipe r = rle(8, {4, 0, 0, 0, 4, 2, 0, 1});
                 r.height = -2;
                 return r;
             }(),
             red + "/0000FF 0000FF 0000FF 0000FF"},
            {"run past the row is cut", rle(8, {9, 0, 0, 0, 4, 0, 0, 1}), red + "/" + red},
            {"absolute past the row is cut", rle(8, {0, 5, 0, 1, 2, 3, 0, 0, 0, 0, 4, 0, 0, 1}),
             red + "/" + mixed},
            {"ends without saying so", rle(8, {4, 0}), white + "/" + red},
            {"ends inside a run", rle(8, {4, 0, 0, 0, 4}), white + "/" + red},
            {"ends inside absolute", rle(8, {4, 0, 0, 0, 0, 4, 0, 1}), "FF0000 00FF00 FFFFFF FFFFFF/" + red},
            {"ends in the first row", rle(8, {0, 4, 0, 1}), kUnsupported},
            {"rows beyond the picture", rle(8, {4, 0, 0, 0, 4, 0, 0, 0, 4, 1, 0, 0, 4, 1, 0, 1}),
             red + "/" + red},
            {"delta far outside", rle(8, {4, 0, 0, 2, 255, 255, 4, 1, 0, 1}),
             "FF000000 FF000000 FF000000 FF000000/FF0000FF FF0000FF FF0000FF FF0000FF"},
        });
}

TEST(Bmp, RefusesAHugePictureThatIsNearlyAllJumpedOver) {
    Recipe recipe{.width = 30000, .height = 30000, .bits = 8, .compression = 1, .palette = RgbPalette()};
    for (int i = 0; i < 120; ++i) {
        recipe.pixels.insert(recipe.pixels.end(), {0, 2, 0, 250, 9, 1}); // a delta, and a run of nine
    }
    try {
        ReadBmp(MakeBmp(recipe), {});
        FAIL();
    } catch (const ImagingError& error) {
        EXPECT_EQ(error.Kind(), ImagingFailure::UnsupportedFormat);
        EXPECT_STREQ(error.what(), "The file is far too short for its picture of 30000 x 30000 pixels.");
    }
}

// Each row behind an end of line: four white and four black of width 8 need no more; then none white, two
// black, six white.
TEST(Bmp, DecodesTheHuffmanCodesOfOs2) {
    const Recipe recipe{
        .headerBytes = 64,
        .width = 8,
        .bits = 1,
        .compression = 3,
        .declaredColours = 2,
        .palette = {0, 0, 255, 0, 0, 255, 0, 0},
        .pixels = {0x00, 0x1B, 0x60, 0x02, 0x6B, 0xF0, 0x00, 0x80, 0x08, 0x00, 0x80, 0x08, 0x00, 0x80, 0x08}};
    EXPECT_EQ(SpelledFile(MakeBmp(recipe)),
              "00FF00 00FF00 FF0000 FF0000 FF0000 FF0000 FF0000 FF0000/FF0000 FF0000 FF0000 FF0000 00FF00 "
              "00FF00 00FF00 00FF00");
}

TEST(Bmp, MakesTheBestOfOddFiles) {
    ByteBuffer twoColours = RgbPalette();
    twoColours.resize(8);
    ByteBuffer longPalette = RgbPalette();
    longPalette.resize(300 * 4);
    ExpectReads<Recipe>(
        MakeBmp,
        {
            {"palette of two: others are black",
             {.bits = 8, .declaredColours = 2, .palette = twoColours, .pixels = Four8()},
             "FF0000 00FF00/000000 000000"},
            {"palette shorter than declared: the pixels' offset counts",
             {.bits = 8, .declaredColours = 256, .palette = RgbPalette(), .pixels = Four8()},
             kFourColours},
            {"short palette of OS/2, and something behind the pixels",
             {.headerBytes = 12,
              .bits = 8,
              .palette = RgbPalette3(),
              .pixels = Bytes().Append(Four8()).Zeros(800).Done()},
             kFourColours},
            {"palette longer than pixels can use",
             {.bits = 8, .declaredColours = 300, .palette = longPalette, .pixels = Four8()},
             kFourColours},
            {"no palette: greys", {.width = 1, .height = 1, .bits = 4, .pixels = {0x80, 0, 0, 0}}, "888888"},
            {"gap before the pixels", {.gap = 10, .pixels = Four24()}, kFourColours},
            {"offset 0",
             {.bits = 8, .declaredColours = 4, .palette = RgbPalette(), .pixelOffset = 0, .pixels = Four8()},
             kFourColours},
            {"offset inside the header", {.pixelOffset = 20, .pixels = Four24()}, kFourColours},
            {"offset without the palette",
             {.bits = 8, .declaredColours = 4, .palette = RgbPalette(), .pixelOffset = 54, .pixels = Four8()},
             kFourColours},
            {"offset beyond the file", {.pixelOffset = 1 << 30, .pixels = Four24()}, kFourColours},
            {"cut inside a row",
             {.pixels = {255, 0, 0, 255, 255, 255, 0, 0, 0, 0, 255}},
             "FF0000 FFFFFF/0000FF FFFFFF"},
            {"cut, alpha of the rest counts",
             {.width = 1, .height = 3, .bits = 32, .pixels = {1, 2, 3, 0, 4, 5, 6, 0}},
             "FFFFFF/060504/030201"},
            {"nothing but headers", {}, kUnsupported},
            {"width 0", {.width = 0, .pixels = Four24()}, kUnsupported},
            {"negative width", {.width = -2, .pixels = Four24()}, kUnsupported},
            {"height with no positive", {.height = -2147483648LL, .pixels = Four24()}, kTooLarge},
            {"3 bits", {.bits = 3, .pixels = Four24()}, kUnsupported},
            {"run lengths of 24-bit pixels by the wrong code",
             {.compression = 1, .pixels = Four24()},
             kUnsupported},
            {"too large", {.width = 40000, .height = 40000, .pixels = Four24()}, kTooLarge},
            {"large without the bytes for it",
             {.width = 30000, .height = 30000, .pixels = Four24()},
             kUnsupported},
        });
}

TEST(Bmp, ReadsEmbeddedFiles) {
    const PixelArray picture = MakePicture(20, 10);
    const ByteBuffer png = Write("png", picture);
    const ByteBuffer jpeg = Write("jpg", picture);
    const ByteBuffer bitmap = Write("bmp", picture);
    EXPECT_TRUE(SamePixels(Read(MakeBmp({.bits = 0, .compression = 5, .pixels = png})), picture));
    for (const int bits : {0, 24}) { // both are in use; by the letter it is 0
        EXPECT_TRUE(SamePixels(Read(MakeBmp({.bits = bits, .compression = 4, .pixels = jpeg})), Read(jpeg)));
    }
    EXPECT_EQ(SpelledFile(MakeBmp({.bits = 0, .compression = 5, .pixels = bitmap})), kUnsupported);
}

TEST(Bmp, ReadsTheFirstOfAnArray) {
    // Offsets count from the beginning of the array.
    const ByteBuffer bitmap = MakeBmp({.pixelOffset = 14 + 54, .pixels = Four24()});
    const ByteBuffer file = Bytes().Text("BA").Le32({40, 0}).Le16({0, 0}).Append(bitmap).Done();
    EXPECT_EQ(SpelledFile(file), kFourColours);
    EXPECT_EQ(FindCodecByContent(Bytes().Text("BA").Zeros(100).Done()), nullptr);
}

TEST(Bmp, ReadsBitmapsInsideOtherFiles) {
    const ByteBuffer file =
        MakeBmp({.bits = 8, .declaredColours = 4, .palette = RgbPalette(), .pixels = Four8()});
    const ByteView info = ByteView(file).subspan(14, 56);
    EXPECT_EQ(Spelled(ReadDib(info, Four8())), kFourColours);
    EXPECT_THROW(ReadDib(info, {}), ImagingError);
}

TEST(Bmp, ReadsTheResolution) {
    const PixelArray picture = Read(MakeBmp({.pixels = Four24()}));
    EXPECT_EQ(picture.Details().dotsPerInchX, 72);
    EXPECT_EQ(picture.Details().dotsPerInchY, 150);
}

// A version 5 file whose profile stands behind the pixels, or whose colours are described in the header.
ByteBuffer MakeColourBmp(std::int64_t space, const std::vector<std::int64_t>& endPoints, std::int64_t gamma,
                         const ByteBuffer& icc) {
    Bytes header;
    header.Le32({124, 1, 1}).Le16({1, 24}).Le32({0, 4, 0, 0, 0, 0, 0, 0, 0, 0, space});
    for (const std::int64_t number : endPoints) {
        header.Le32({number});
    }
    header.Le32({gamma, gamma, gamma, 0, 128, static_cast<std::int64_t>(icc.size()), 0});
    return Bytes()
        .Text("BM")
        .Le32({0, 0, 138})
        .Append(header.Done())
        .U8({100, 140, 120, 0})
        .Append(icc)
        .Done();
}

TEST(Bmp, ConvertsOtherColourSpacesToSrgb) {
    const std::vector<std::int64_t> none(9, 0);
    // Wide primaries (D65 white) as XYZ in 2.30 fixed point.
    const auto fixed = [](double value) { return static_cast<std::int64_t>(value * (1 << 30)); };
    const std::vector<std::int64_t> wide{fixed(0.57667), fixed(0.29734), fixed(0.02703),
                                         fixed(0.18556), fixed(0.62736), fixed(0.07069),
                                         fixed(0.18823), fixed(0.07529), fixed(0.99134)};
    const std::vector<std::int64_t> srgb{fixed(0.41239), fixed(0.21264), fixed(0.01933),
                                         fixed(0.35758), fixed(0.71517), fixed(0.11919),
                                         fixed(0.18048), fixed(0.07219), fixed(0.95053)};
    constexpr std::int64_t kEmbedded = 0x4D424544;
    const std::string plain = "788C64";
    const std::string embedded = SpelledFile(MakeColourBmp(kEmbedded, none, 0, WideRgbProfile()));
    EXPECT_NE(embedded, plain);
    EXPECT_EQ(SpelledFile(MakeColourBmp(0, wide, 144128, {})), embedded);
    EXPECT_EQ(SpelledFile(MakeColourBmp(0, srgb, 144179, {})), plain);
    EXPECT_EQ(SpelledFile(MakeColourBmp(0, none, 0, {})), plain);
    EXPECT_EQ(SpelledFile(MakeColourBmp(kEmbedded, none, 0, {1, 2, 3})), plain);
    EXPECT_FALSE(Read(MakeColourBmp(kEmbedded, none, 0, WideRgbProfile())).Details().icc.empty());
}

TEST(Bmp, WritesWhatEveryProgramReads) {
    PixelArray picture(3, 2);
    std::memset(picture.WritableRows(), 0, static_cast<std::size_t>(picture.Stride()) * 2);
    picture.WritableRows()[3] = 128; // half transparent black
    picture.SetHasAlpha(true);
    Metadata details;
    details.dotsPerInchX = 300;
    picture.SetDetails(details);
    const ByteBuffer expected = Bytes()
                                    .Text("BM")
                                    .Le32({54 + 24, 0, 54, 40, 3, 2})
                                    .Le16({1, 24})
                                    .Le32({0, 24, 11811, 0, 0, 0})
                                    .U8({255, 255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0})
                                    .U8({127, 127, 127, 255, 255, 255, 255, 255, 255, 0, 0, 0})
                                    .Done();
    EXPECT_EQ(Write("bmp", picture), expected);
}

} // namespace
} // namespace pictorel::codecs::testing
