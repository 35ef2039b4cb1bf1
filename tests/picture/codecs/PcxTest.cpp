// PCX files: planes and packed pixels of every depth, palettes of three generations, runs, and odd headers.
#include "PictureSupport.h"

#include <vector>

namespace pictorel::codecs::testing {
namespace {

struct Recipe {
    int version = 5;
    int encoding = 1;
    int bits = 8;
    int planes = 1;
    int left = 0;
    int top = 0;
    int width = 4;
    int height = 1;
    int planeBytes = 4;
    int dotsPerInch = 0;
    ByteBuffer palette{}; // of the header
    ByteBuffer pixels{};
    ByteBuffer after{};
};

ByteBuffer MakePcx(const Recipe& r) {
    ByteBuffer palette = r.palette;
    palette.resize(48);
    return Bytes()
        .U8({10, r.version, r.encoding, r.bits})
        .Le16({r.left, r.top, r.left + r.width - 1, r.top + r.height - 1, r.dotsPerInch, r.dotsPerInch})
        .Append(palette)
        .U8({0, r.planes})
        .Le16({r.planeBytes, 1})
        .Zeros(58)
        .Append(r.pixels)
        .Append(r.after)
        .Done();
}

// Entry i is (i, 0, 255).
ByteBuffer LongPalette(bool withMarker) {
    Bytes bytes;
    if (withMarker) {
        bytes.U8({12});
    }
    for (int i = 0; i < 256; ++i) {
        bytes.U8({i, 0, 255});
    }
    return bytes.Done();
}

TEST(Pcx, ReadsEveryDivisionIntoPlanes) {
    const ByteBuffer colours{1,  1,  1,  2,  2,  2,  3,  3,  3,  4,  4,  4,  5,  5,  5,  6,  6,
                             6,  7,  7,  7,  8,  8,  8,  9,  9,  9,  10, 10, 10, 11, 11, 11, 12,
                             12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15, 16, 16, 16}; // entry i is grey i + 1
    ExpectReads<Recipe>(
        MakePcx,
        {
            {"1 bit", {.bits = 1, .planeBytes = 2, .pixels = {0x50, 0}}, "000000 FFFFFF 000000 FFFFFF"},
            {"2 planes of 1 bit",
             {.bits = 1, .planes = 2, .planeBytes = 2, .palette = colours, .pixels = {0x50, 0, 0x30, 0}},
             "010101 020202 030303 040404"},
            {"4 planes of 1 bit",
             {.bits = 1,
              .planes = 4,
              .planeBytes = 2,
              .palette = colours,
              .pixels = {0x10, 0, 0x10, 0, 0x10, 0, 0x30, 0}},
             "010101 010101 090909 101010"},
            {"2 bits",
             {.bits = 2, .planeBytes = 2, .palette = colours, .pixels = {0x1B, 0}},
             "010101 020202 030303 040404"},
            {"4 bits",
             {.bits = 4, .planeBytes = 2, .palette = colours, .pixels = {0x12, 0xC1, 0xEF}},
             "020202 030303 0F0F0F 101010"},
            {"8 bits", {.pixels = {0, 1, 2, 3}, .after = LongPalette(true)}, "0000FF 0100FF 0200FF 0300FF"},
            {"24 bits",
             {.planes = 3, .pixels = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
             "010509 02060A 03070B 04080C"},
            {"32 bits", {.planes = 4, .width = 1, .planeBytes = 1, .pixels = {1, 2, 3, 4}}, "01020304"},
            {"not encoded",
             {.encoding = 0, .planes = 3, .width = 1, .planeBytes = 2, .pixels = {0xC5, 0, 0xFF, 0, 9, 0}},
             "C5FF09"},
            {"a window elsewhere",
             {.left = 700, .top = 90, .pixels = {0, 1, 2, 3}, .after = LongPalette(true)},
             "0000FF 0100FF 0200FF 0300FF"},
        });
}

TEST(Pcx, FindsThePaletteOfItsTime) {
    const std::string greys = "000000 010101 020202 030303";
    ExpectReads<Recipe>(
        MakePcx,
        {
            {"black and white swapped",
             {.bits = 1, .planeBytes = 1, .palette = {255, 255, 255}, .pixels = {0x50}},
             "FFFFFF 000000 FFFFFF 000000"},
            {"two colours are no palette where the version has none",
             {.version = 3, .bits = 1, .planeBytes = 1, .palette = {255, 255, 255}, .pixels = {0x50}},
             "000000 FFFFFF 000000 FFFFFF"},
            {"CGA, green set, blue background",
             {.version = 0, .bits = 2, .planeBytes = 1, .palette = {0x10}, .pixels = {0x1B}},
             "0000AA 00AA00 AA0000 AA5500"},
            {"CGA, cyan set, bright",
             {.version = 2, .bits = 2, .planeBytes = 1, .palette = {0, 0, 0, 0x60}, .pixels = {0x1B}},
             "000000 55FFFF FF55FF FFFFFF"},
            {"EGA's own colours",
             {.version = 3, .bits = 4, .planeBytes = 2, .palette = {9, 9, 9}, .pixels = {0x12, 0xC1, 0xEF}},
             "0000AA 00AA00 FFFF55 FFFFFF"},
            {"256 colours without the marker",
             {.pixels = {0, 1, 2, 3}, .after = LongPalette(false)},
             "0000FF 0100FF 0200FF 0300FF"},
            {"256 colours and something behind",
             {.pixels = {0, 1, 2, 3}, .after = Bytes().Append(LongPalette(true)).Text("more").Done()},
             "0000FF 0100FF 0200FF 0300FF"},
            {"no palette: greys", {.pixels = {0, 1, 2, 3}}, greys},
        });
}

TEST(Pcx, DecodesRunsAndToleratesOddHeaders) {
    ExpectReads<Recipe>(
        MakePcx,
        {
            {"runs across planes",
             {.planes = 3, .width = 2, .planeBytes = 2, .pixels = {0xC5, 7, 9}},
             "070707 070709"},
            {"runs across rows",
             {.planes = 3, .width = 1, .height = 2, .planeBytes = 1, .pixels = {0xC4, 7, 0xC1, 0xFF, 9}},
             "070707/07FF09"},
            {"runs of nothing", {.pixels = {0xC0, 5, 0, 1, 2, 3}}, "000000 010101 020202 030303"},
            {"odd length of rows",
             {.width = 2, .height = 2, .planeBytes = 3, .pixels = {1, 2, 0, 3, 4, 0}},
             "010101 020202/030303 040404"},
            {"rows shorter than the picture",
             {.width = 3, .planeBytes = 2, .pixels = {1, 2}},
             "010101 020202 FFFFFF"},
            {"no length of rows",
             {.width = 3, .height = 2, .planeBytes = 0, .pixels = {1, 2, 3, 0, 4, 5, 6, 0}},
             "010101 020202 030303/040404 050505 060606"},
            {"cut inside a row",
             {.height = 2, .pixels = {1, 2, 3, 4, 5}},
             "010101 020202 030303 040404/050505 FFFFFF FFFFFF FFFFFF"},
            {"cut before a row's last plane",
             {.planes = 3, .width = 1, .height = 2, .planeBytes = 1, .pixels = {1, 2, 3, 4, 5}},
             "010203/FFFFFF"},
            {"nothing whole", {.planes = 3, .pixels = {1, 2, 3, 4}}, kUnsupported},
            {"version 1", {.version = 1, .pixels = {1, 2, 3, 4}}, kUnsupported},
            {"5 planes", {.planes = 5, .pixels = {1, 2, 3, 4}}, kUnsupported},
            {"a picture that ends before it begins",
             {.left = 10, .width = -1, .pixels = {1, 2, 3, 4}},
             kUnsupported},
            {"too large", {.width = 65000, .pixels = {1, 2, 3, 4}}, kTooLarge},
            {"large without the bytes for it",
             {.planes = 3, .width = 30000, .height = 30000, .pixels = {1, 2, 3, 4}},
             kUnsupported},
        });
}

TEST(Pcx, KeepsTheResolutionAndPacksRuns) {
    EXPECT_EQ(Read(MakePcx({.dotsPerInch = 300, .pixels = {1, 2, 3, 4}})).Details().dotsPerInchX, 300);
    PixelArray picture(3, 1);
    for (int i = 0; i < 12; ++i) {
        picture.WritableRows()[i] = i % 4 == 3 ? 255 : 0xC8;
    }
    Metadata details;
    details.dotsPerInchX = details.dotsPerInchY = 96;
    picture.SetDetails(details);
    const ByteBuffer file = Write("pcx", picture);
    const ByteBuffer rows{0xC3, 0xC8, 0, 0xC3, 0xC8, 0, 0xC3, 0xC8, 0}; // the even length costs a byte of 0
    EXPECT_EQ(ByteBuffer(file.begin() + 128, file.end()), rows);
    EXPECT_EQ(Read(file).Details().dotsPerInchY, 96);
}

} // namespace
} // namespace pictorel::codecs::testing
