// Targa files: every type, depth and direction, what their alpha means, packets, and files that are none.
#include "PictureSupport.h"

#include <vector>

namespace pictorel::codecs::testing {
namespace {

// What a file is made of; a test names only what matters to it.
struct Recipe {
    int type = 2;
    int mapFirst = 0;
    int mapLength = 0;
    int mapBits = 0;
    int width = 2;
    int height = 2;
    int bits = 24;
    int descriptor = 0x20; // top row first
    std::string_view id{};
    ByteBuffer map{};
    ByteBuffer pixels{};
    int attributes = -1; // of the extension area; -1: the file has none
};

ByteBuffer MakeTga(const Recipe& recipe) {
    Bytes file;
    file.U8({static_cast<int>(recipe.id.size()), recipe.mapLength > 0 ? 1 : 0, recipe.type});
    file.Le16({recipe.mapFirst, recipe.mapLength}).U8({recipe.mapBits});
    file.Le16({0, 0, recipe.width, recipe.height}).U8({recipe.bits, recipe.descriptor});
    file.Text(recipe.id).Append(recipe.map).Append(recipe.pixels);
    if (recipe.attributes >= 0) {
        const auto extensionAt = static_cast<std::int64_t>(file.Size());
        file.Le16({495}).Zeros(492).U8({recipe.attributes});
        file.Le32({extensionAt, 0}).Text(std::string_view("TRUEVISION-XFILE.\0", 18));
    }
    return file.Done();
}

ByteBuffer Four24() {
    return {0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255};
}
ByteBuffer RgbMap() {
    return {0, 0, 255, 0, 255, 0, 255, 0, 0};
} // red green blue

TEST(Tga, ReadsEveryTypeDepthAndDirection) {
    ExpectReads<Recipe>(
        MakeTga,
        {
            {"24 bits", {.pixels = Four24()}, "FF0000 00FF00/0000FF FFFFFF"},
            {"an id before the pixels", {.id = "by hand", .pixels = Four24()}, "FF0000 00FF00/0000FF FFFFFF"},
            {"bottom row first", {.descriptor = 0, .pixels = Four24()}, "0000FF FFFFFF/FF0000 00FF00"},
            {"right to left", {.descriptor = 0x30, .pixels = Four24()}, "00FF00 FF0000/FFFFFF 0000FF"},
            {"from the lower right", {.descriptor = 0x10, .pixels = Four24()}, "FFFFFF 0000FF/00FF00 FF0000"},
            {"every second row first",
             {.type = 3, .width = 1, .height = 5, .bits = 8, .descriptor = 0x60, .pixels = {0, 2, 4, 1, 3}},
             "000000/010101/020202/030303/040404"},
            {"every fourth row first",
             {.type = 3, .width = 1, .height = 5, .bits = 8, .descriptor = 0x80, .pixels = {0, 4, 1, 2, 3}},
             "040404/030303/020202/010101/000000"},
            {"junk where no map needs it, but of the right length",
             {.mapFirst = 7, .mapBits = 77, .descriptor = 0x26, .pixels = Four24()},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"junk where no map needs it, but signed",
             {.mapFirst = 7,
              .mapBits = 77,
              .pixels = Bytes().Append(Four24()).Zeros(9).Done(),
              .attributes = 0},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"a map of greys",
             {.type = 1,
              .mapLength = 2,
              .mapBits = 8,
              .height = 1,
              .bits = 8,
              .map = {5, 9},
              .pixels = {1, 0}},
             "090909 050505"},
            {"16 bits", {.height = 1, .bits = 16, .pixels = {0x00, 0x7C, 0x10, 0xC2}}, "FF0000 848484"},
            {"15 bits", {.height = 1, .bits = 15, .pixels = {0x00, 0x7C, 0x10, 0xC2}}, "FF0000 848484"},
            {"grey", {.type = 3, .height = 1, .bits = 8, .pixels = {1, 255}}, "010101 FFFFFF"},
            {"grey and alpha",
             {.type = 3, .height = 1, .bits = 16, .pixels = {1, 2, 3, 255}},
             "01010102 030303FF"},
            {"a map that starts above 0",
             {.type = 1,
              .mapFirst = 5,
              .mapLength = 3,
              .mapBits = 24,
              .bits = 8,
              .map = RgbMap(),
              .pixels = {5, 6, 7, 0}},
             "FF0000 00FF00/0000FF 000000"},
            {"a map of 16 bits, indices of 16 bits",
             {.type = 1,
              .mapFirst = 300,
              .mapLength = 2,
              .mapBits = 16,
              .height = 1,
              .bits = 16,
              .map = {0x1F, 0, 0xE0, 0x83},
              .pixels = {0x2C, 1, 0x2D, 1}},
             "0000FF 00FF00"},
            {"a map with alpha",
             {.type = 1,
              .mapLength = 2,
              .mapBits = 32,
              .height = 1,
              .bits = 8,
              .map = {1, 2, 3, 4, 5, 6, 7, 255},
              .pixels = {0, 1}},
             "03020104 070605FF"},
        });
}

TEST(Tga, KnowsWhatAlphaMeans) {
    const ByteBuffer pixels{10, 20, 30, 0, 40, 50, 60, 128};
    const ByteBuffer unset{10, 20, 30, 0, 40, 50, 60, 0};
    const auto recipe = [](ByteBuffer data, int descriptor, int attributes) {
        return Recipe{.height = 1,
                      .bits = 32,
                      .descriptor = descriptor,
                      .pixels = std::move(data),
                      .attributes = attributes};
    };
    const std::string plain = "1E140A00 3C322880";
    const std::string opaque = "1E140A 3C3228";
    ExpectReads<Recipe>(
        MakeTga, {
                     {"not said, and used", recipe(pixels, 0x20, -1), plain},
                     {"not said, and never set", recipe(unset, 0x20, -1), opaque},
                     {"said by the header", recipe(pixels, 0x28, -1), plain},
                     {"said by the header, and never set", recipe(unset, 0x28, -1), opaque},
                     {"none, by the extension", recipe(pixels, 0x20, 0), opaque},
                     {"none, by the extension, but some by the header", recipe(pixels, 0x28, 0), plain},
                     {"to be ignored", recipe(pixels, 0x28, 1), opaque},
                     {"undefined", recipe(pixels, 0x28, 2), opaque},
                     {"alpha, by the extension", recipe(pixels, 0x28, 3), plain},
                     {"premultiplied", recipe(pixels, 0x28, 4), "1E140A00 78645080"},
                     {"0 everywhere, and meant so", recipe(unset, 0x28, 3), "1E140A00 3C322800"},
                     {"cut, alpha of the whole rows counts",
                      {.width = 1, .height = 3, .bits = 32, .pixels = {1, 2, 3, 0, 4, 5}},
                      "030201/FFFFFF/FFFFFF"},
                     {"cut inside a row, whose alpha is there",
                      {.height = 2, .bits = 32, .pixels = {1, 2, 3, 255, 1, 2, 3, 255, 4, 5, 6, 9}},
                      "030201FF 030201FF/06050409 FFFFFFFF"},
                     {"a sixteenth bit that was never set",
                      {.height = 1, .bits = 16, .descriptor = 0x21, .pixels = {0x00, 0x7C, 0xFF, 0x7F}},
                      "FF0000 FFFFFF"},
                     {"a sixteenth bit",
                      {.height = 1, .bits = 16, .descriptor = 0x21, .pixels = {0x00, 0x7C, 0xFF, 0xFF}},
                      "FF000000 FFFFFFFF"},
                 });
}

TEST(Tga, DecodesPackets) {
    const auto recipe = [](ByteBuffer pixels, int type = 11) {
        return Recipe{.type = type, .width = 3, .bits = type == 11 ? 8 : 24, .pixels = std::move(pixels)};
    };
    ExpectReads<Recipe>(
        MakeTga,
        {
            {"run and literal", recipe({0x82, 7, 2, 1, 2, 3}), "070707 070707 070707/010101 020202 030303"},
            {"across the end of a row", recipe({0x83, 7, 1, 1, 2}),
             "070707 070707 070707/070707 010101 020202"},
            {"literal across the end", recipe({5, 1, 2, 3, 4, 5, 6}),
             "010101 020202 030303/040404 050505 060606"},
            {"beyond the picture", recipe({0xFF, 7}), "070707 070707 070707/070707 070707 070707"},
            {"cut inside a literal", recipe({5, 1, 2, 3, 4}), "010101 020202 030303/040404 FFFFFF FFFFFF"},
            {"cut inside a colour", recipe({0x82, 1, 2, 3, 5, 1, 2, 3, 4, 5}, 10),
             "030201 030201 030201/030201 FFFFFF FFFFFF"},
            {"cut inside the first row", recipe({5, 1, 2, 3, 4, 5}, 10), kUnsupported},
            {"nothing whole", recipe({0x85, 1}, 10), kUnsupported},
        });
}

TEST(Tga, TakesNothingElseForATarga) {
    const std::vector<RecipeCase<Recipe>> cases{
        {"a Huffman type", {.type = 32, .pixels = Four24()}, ""},
        {"type 0", {.type = 0, .pixels = Four24()}, ""},
        {"no width", {.width = 0, .pixels = Four24()}, ""},
        {"a depth of another type", {.bits = 8, .pixels = Four24()}, ""},
        {"interleaved in no known way", {.descriptor = 0xC0, .pixels = Four24()}, ""},
        {"indices without a map", {.type = 1, .bits = 8, .pixels = Four24()}, ""},
        {"a map of no depth", {.mapLength = 4, .mapBits = 9, .pixels = Four24()}, ""},
        {"no pixels", {}, ""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(FindCodecByContent(MakeTga(c.recipe)), nullptr) << c.name;
    }
    std::uint32_t random = 7;
    for (int i = 0; i < 200000; ++i) { // chance makes no headers
        Bytes bytes;
        for (int k = 0; k < 40; ++k) {
            bytes.U8({static_cast<int>((random = random * 1664525 + 1013904223) >> 24)});
        }
        const Codec* const codec = FindCodecByContent(bytes.Done());
        ASSERT_TRUE(codec == nullptr) << codec->name;
    }
    EXPECT_EQ(SpelledFile(MakeTga({.width = 30000, .height = 30000, .pixels = Four24()})), kUnsupported);
    EXPECT_EQ(SpelledFile(MakeTga({.width = 40000, .height = 2, .pixels = Four24()})), kTooLarge);
}

TEST(Tga, PacksRunsAndSaysWhatItsAlphaIs) {
    PixelArray picture(200, 1);
    std::memset(picture.WritableRows(), 0xFF, picture.RowBytes());
    picture.WritableRows()[0] = 0; // one yellow pixel, then white ones
    const ByteBuffer file = Write("tga", picture);
    const ByteBuffer packets{0, 0, 255, 255, 0xFF, 255, 255, 255, 0xC6, 255, 255, 255};
    EXPECT_EQ(ByteBuffer(file.begin() + 18, file.begin() + 30), packets);
    EXPECT_EQ(file.size(), 30U + 495 + 26);
    EXPECT_EQ(file[30 + 494], 0); // no alpha
    const ByteBuffer withAlpha = Write("tga", MakePicture(3, 3, true));
    EXPECT_EQ(withAlpha[withAlpha.size() - 27], 3); // alpha
}

} // namespace
} // namespace pictorel::codecs::testing
