// GIF: frames and screens, codes that break off or come oddly, and the choice of 256 colours.
#include "PictureSupport.h"

#include <cmath>
#include <set>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

struct Code {
    int value;
    int bits;
};

// The minimum code size and the codes in sub-blocks, with or without the empty one at the end.
ByteBuffer Codes(int minimumSize, const std::vector<Code>& codes, bool terminated = true) {
    ByteBuffer packed;
    std::uint32_t bits = 0;
    int count = 0;
    for (const Code& code : codes) {
        bits |= static_cast<std::uint32_t>(code.value) << count;
        for (count += code.bits; count >= 8; count -= 8, bits >>= 8) {
            packed.push_back(static_cast<std::uint8_t>(bits));
        }
    }
    packed.push_back(static_cast<std::uint8_t>(bits));
    Bytes data;
    data.U8({minimumSize});
    for (std::size_t at = 0; at < packed.size(); at += 255) {
        const std::size_t size = std::min<std::size_t>(255, packed.size() - at);
        data.U8({static_cast<int>(size)}).Append({packed.data() + at, size});
    }
    return terminated ? data.U8({0}).Done() : data.Done();
}

// Indices 0..3, each as a code of its own, with a clear code before every second so that codes stay 3 bits.
ByteBuffer Plain(const std::vector<int>& indices) {
    std::vector<Code> codes;
    for (std::size_t i = 0; i < indices.size(); ++i) {
        if (i % 2 == 0) {
            codes.push_back({4, 3});
        }
        codes.push_back({indices[i], 3});
    }
    codes.push_back({5, 3});
    return Codes(2, codes);
}

ByteBuffer Colours() {
    return {255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255};
}
ByteBuffer Transparent2() {
    return {0x21, 0xF9, 4, 1, 0, 0, 2, 0};
}

struct Recipe {
    int screenWidth = 2;
    int screenHeight = 2;
    bool screenColours = true;
    ByteBuffer blocks{}; // before the frame
    int left = 0;
    int top = 0;
    int width = 2;
    int height = 2;
    int flags = 0; // of the frame
    ByteBuffer frameColours{};
    ByteBuffer data = Plain({0, 1, 2, 3});
};

ByteBuffer MakeGif(const Recipe& recipe) {
    return Bytes()
        .Text("GIF89a")
        .Le16({recipe.screenWidth, recipe.screenHeight})
        .U8({recipe.screenColours ? 0x81 : 0, 0, 0})
        .Append(recipe.screenColours ? Colours() : ByteBuffer{})
        .Append(recipe.blocks)
        .U8({0x2C})
        .Le16({recipe.left, recipe.top, recipe.width, recipe.height})
        .U8({recipe.flags})
        .Append(recipe.frameColours)
        .Append(recipe.data)
        .U8({0x3B})
        .Done();
}

TEST(Gif, PlacesTheFirstFrameOnItsScreen) {
    ExpectReads<Recipe>(
        MakeGif,
        {
            {"frame as large as the screen", {}, "FF0000 00FF00/0000FF FFFFFF"},
            {"smaller and offset: the rest is transparent",
             {.left = 1, .top = 1, .width = 1, .height = 1},
             "00000000 00000000/00000000 FF0000FF"},
            {"larger: the screen grows",
             {.screenWidth = 1, .screenHeight = 1},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"outside: the screen grows",
             {.screenWidth = 1, .screenHeight = 1, .left = 1, .width = 1, .height = 1},
             "00000000 FF0000FF"},
            {"no screen", {.screenWidth = 0, .screenHeight = 0}, "FF0000 00FF00/0000FF FFFFFF"},
            {"transparent colour", {.blocks = Transparent2()}, "FF0000FF 00FF00FF/00000000 FFFFFFFF"},
            {"transparent colour that does not occur",
             {.blocks = Transparent2(), .data = Plain({0, 0, 1, 1})},
             "FF0000 FF0000/00FF00 00FF00"},
            {"interlaced",
             {.screenWidth = 1,
              .screenHeight = 5,
              .width = 1,
              .height = 5,
              .flags = 0x40,
              .data = Plain({0, 1, 2, 3, 0})},
             "FF0000/FFFFFF/0000FF/FF0000/00FF00"},
            {"interlaced and cut: the passes there were",
             {.screenWidth = 1,
              .screenHeight = 9,
              .width = 1,
              .height = 9,
              .flags = 0x40,
              .data = Codes(2, {{4, 3}, {0, 3}, {1, 3}, {4, 3}, {2, 3}})},
             "FF0000/FF0000/FF0000/FF0000/0000FF/0000FF/0000FF/0000FF/00FF00"},
            {"a screen too large to be true",
             {.screenWidth = 40000, .screenHeight = 40000},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"a screen that the file cannot justify",
             {.screenWidth = 30000, .screenHeight = 30000},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"a place that makes the screen too large", {.left = 32767}, "FF0000 00FF00/0000FF FFFFFF"},
            {"a frame of nothing before",
             {.blocks = {0x2C, 0, 0, 0, 0, 2, 0, 2, 0, 0, 2, 0}},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"a frame without size before",
             {.blocks = {0x2C, 0, 0, 0, 0, 0, 0, 2, 0, 0x80, 9, 9, 9, 8, 8, 8, 2, 1, 0x44, 0}},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"own colours",
             {.flags = 0x80, .frameColours = {1, 2, 3, 4, 5, 6}, .data = Plain({0, 1, 1, 0})},
             "010203 040506/040506 010203"},
            {"index beyond the colours",
             {.flags = 0x80, .frameColours = {1, 2, 3, 4, 5, 6}, .data = Plain({0, 1, 2, 3})},
             "010203 040506/000000 000000"},
            {"no colours at all: greys", {.screenColours = false}, "000000 555555/AAAAAA FFFFFF"},
            {"comment and unknown blocks before",
             {.blocks = {0x21, 0xFE, 2, 'h', 'i', 0, 0x21, 0x77, 1, 9, 0, 0, 0}},
             "FF0000 00FF00/0000FF FFFFFF"},
        });
}

TEST(Gif, DecodesCodesHoweverTheyCome) {
    const std::vector<Code> strings{{4, 3}, {0, 3}, {6, 3}, {1, 3}, {5, 4}}; // 6: the string being learned
    ExpectReads<Recipe>(
        MakeGif,
        {
            {"a code before it is learned", {.data = Codes(2, strings)}, "FF0000 FF0000/FF0000 00FF00"},
            {"no clear code first",
             {.data = Codes(2, {{0, 3}, {1, 3}, {2, 3}, {3, 4}, {5, 4}})},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"no end code",
             {.data = Codes(2, {{4, 3}, {0, 3}, {1, 3}, {2, 3}, {3, 4}})},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"ends early",
             {.data = Codes(2, {{4, 3}, {0, 3}, {1, 3}, {2, 3}, {5, 4}})},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"ends in the first row", {.data = Codes(2, {{4, 3}, {0, 3}, {5, 3}})}, kUnsupported},
            {"a code that cannot come",
             {.data = Codes(2, {{4, 3}, {0, 3}, {1, 3}, {2, 3}, {12, 4}, {1, 4}})},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"data goes on behind the frame",
             {.data = Plain({0, 1, 2, 3, 3, 3})},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"smallest code size",
             {.data = Codes(1, {{2, 2}, {0, 2}, {1, 2}, {1, 3}, {0, 3}, {3, 3}})},
             "FF0000 00FF00/00FF00 FF0000"},
            {"largest code size",
             {.data = Codes(11, {{2048, 12}, {0, 12}, {1, 12}, {3, 12}, {1000, 12}, {2049, 12}})},
             "FF0000 00FF00/FFFFFF 000000"},
            {"code size 0", {.data = Codes(0, {{0, 1}, {0, 1}})}, kUnsupported},
            {"code size 12", {.data = Codes(12, {{0, 13}})}, kUnsupported},
            {"no codes", {.data = {2, 0}}, kUnsupported},
            {"block longer than the file", {.data = {2, 200, 0x44, 0x0A}}, "FF0000 00FF00/FFFFFF FFFFFF"},
        });
}

// All 4096 codes are learned and no clear code comes: codes stay 12 bits and keep their strings.
TEST(Gif, GoesOnWithAFullTable) {
    std::vector<Code> codes{{256, 9}};
    int bits = 9;
    const int count = 6000;
    for (int i = 0, next = 258; i < count; ++i) {
        codes.push_back({i % 2, bits});
        if (i > 0 && next < 4096) {
            ++next;
            bits += next == 1 << bits && bits < 12 ? 1 : 0;
        }
    }
    const PixelArray picture = Read(MakeGif(
        {.screenWidth = count, .screenHeight = 1, .width = count, .height = 1, .data = Codes(8, codes)}));
    for (int x = 0; x < count; ++x) {
        ASSERT_EQ(picture.Row(0)[4 * x + 2], x % 2 == 0 ? 255 : 0) << x;
    }
}

TEST(Gif, RefusesWhatHoldsNoPicture) {
    const ByteBuffer whole = MakeGif({});
    for (const std::size_t length : {6U, 10U, 13U, 25U, 34U}) {
        EXPECT_EQ(SpelledFile({whole.data(), length}), kUnsupported) << length;
    }
    ExpectReads<Recipe>(
        MakeGif, {
                     {"frame without pixels", {.width = 0}, kUnsupported},
                     {"only the trailer", {.blocks = {0x3B}}, kUnsupported},
                     {"too large", {.width = 40000, .height = 40000}, kTooLarge},
                     {"large without the bytes for it", {.width = 30000, .height = 30000}, kUnsupported},
                 });
}

TEST(Gif, KeepsFewColoursExactly) {
    for (const int colours : {1, 2, 3, 16, 17, 255, 256}) {
        const PixelArray picture = MakePicture(301, 77, false, colours);
        EXPECT_TRUE(SamePixels(picture, Read(Write("gif", picture)))) << colours;
    }
    // 255 colours and transparency: one bit of it, and what shows is untouched.
    PixelArray picture = MakePicture(301, 77, true, 255);
    const PixelArray again = Read(Write("gif", picture));
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            const std::uint8_t* const before = picture.Row(y) + std::ptrdiff_t{4} * x;
            const std::uint8_t* const after = again.Row(y) + std::ptrdiff_t{4} * x;
            ASSERT_EQ(after[3], before[3] < 128 ? 0 : 255);
            if (after[3] != 0) {
                ASSERT_EQ(std::memcmp(before, after, 3), 0);
            }
        }
    }
}

// Mean difference of 8 x 8 blocks, where error diffusion must have made up for the missing colours.
double BlockDifference(const PixelArray& a, const PixelArray& b) {
    double total = 0;
    int count = 0;
    for (int top = 0; top + 8 <= a.Height(); top += 8) {
        for (int left = 0; left + 8 <= a.Width(); left += 8) {
            for (int component = 0; component < 3; ++component) {
                int difference = 0;
                for (int i = 0; i < 64; ++i) {
                    const std::ptrdiff_t at = std::ptrdiff_t{4} * (left + i % 8) + component;
                    difference += a.Row(top + i / 8)[at] - b.Row(top + i / 8)[at];
                }
                total += std::abs(difference) / 64.0;
                ++count;
            }
        }
    }
    return total / count;
}

// Colours as photographs have them: lightness over the whole range, hues that change little from place to
// place.
PixelArray MakeScene(int width, int height) {
    PixelArray picture = MakePicture(width, height);
    for (int y = 0; y < height; ++y) {
        std::uint8_t* pixel = picture.WritableRows() + y * picture.Stride();
        for (int x = 0; x < width; ++x, pixel += 4) {
            const double light = 128 + 90 * std::sin(x / 47.0) * std::cos(y / 61.0) + (pixel[0] & 7);
            const double hue = 30 * std::sin((x + 2 * y) / 80.0);
            pixel[0] = static_cast<std::uint8_t>(light - hue);
            pixel[1] = static_cast<std::uint8_t>(light);
            pixel[2] = static_cast<std::uint8_t>(light + hue);
        }
    }
    return picture;
}

TEST(Gif, ServesManyColoursWell) {
    const PixelArray picture = MakeScene(400, 300);
    const PixelArray again = Read(Write("gif", picture));
    std::set<std::uint32_t> colours;
    double squares = 0;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            std::uint32_t colour = 0;
            std::memcpy(&colour, again.Row(y) + std::ptrdiff_t{4} * x, 4);
            colours.insert(colour);
            for (int k = 0; k < 3; ++k) {
                const int difference = picture.Row(y)[4 * x + k] - again.Row(y)[4 * x + k];
                squares += difference * difference;
            }
        }
    }
    EXPECT_EQ(colours.size(), 256U);
    EXPECT_LT(std::sqrt(squares / (400.0 * 300 * 3)), 4); // 3 bits of red and green and 2 of blue give 17
    EXPECT_LT(BlockDifference(picture, again), 0.4);
}

TEST(Gif, KeepsAFlatBackgroundFlat) {
    PixelArray picture = MakePicture(300, 300);
    for (int y = 0; y < 200; ++y) {
        std::memset(picture.WritableRows() + y * picture.Stride(), 0xFF, picture.RowBytes());
    }
    const PixelArray again = Read(Write("gif", picture));
    EXPECT_EQ(std::memcmp(again.Row(100), picture.Row(100), picture.RowBytes()), 0);
}

TEST(Gif, WritesAPictureThatIsAllTransparent) {
    PixelArray picture(3, 1);
    std::memset(picture.WritableRows(), 0, picture.RowBytes());
    picture.SetHasAlpha(true);
    EXPECT_EQ(Spelled(Read(Write("gif", picture))), "00000000 00000000 00000000");
}

} // namespace
} // namespace pictorel::codecs::testing
