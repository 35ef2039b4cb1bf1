// Sun raster files: types, depths, colour maps, run lengths, and headers that are not quite right.
#include "PictureSupport.h"

#include <vector>

namespace pictorel::codecs::testing {
namespace {

struct Recipe {
    int width = 2;
    int height = 2;
    int bits = 24;
    int length = 0;
    int type = 1;
    int mapType = 0;
    ByteBuffer map{};
    ByteBuffer pixels{};
};

ByteBuffer MakeRas(const Recipe& r) {
    return Bytes()
        .Be32({0x59A66A95, r.width, r.height, r.bits, r.length, r.type, r.mapType,
               static_cast<std::int64_t>(r.map.size())})
        .Append(r.map)
        .Append(r.pixels)
        .Done();
}

TEST(Ras, ReadsWhatPeopleHave) {
    const ByteBuffer four{0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255};
    const std::string fourColours = "FF0000 00FF00/0000FF FFFFFF";
    const auto packed = [](ByteBuffer pixels) {
        return Recipe{.width = 4, .bits = 8, .type = 2, .pixels = std::move(pixels)};
    };
    ExpectReads<Recipe>(
        MakeRas,
        {
            {"standard", {.length = 12, .pixels = four}, fourColours},
            {"old, without a length", {.type = 0, .pixels = four}, fourColours},
            {"red first", {.height = 1, .type = 3, .pixels = {1, 2, 3, 4, 5, 6}}, "010203 040506"},
            {"32 bits", {.height = 1, .bits = 32, .pixels = {0, 3, 2, 1, 99, 6, 5, 4}}, "010203 040506"},
            {"32 bits, red first",
             {.height = 1, .bits = 32, .type = 3, .pixels = {0, 1, 2, 3, 9, 4, 5, 6}},
             "010203 040506"},
            {"rows of whole 16 bits", {.width = 1, .pixels = {3, 2, 1, 0, 6, 5, 4, 0}}, "010203/040506"},
            {"rows without their padding", {.width = 1, .pixels = {3, 2, 1, 6, 5, 4}}, "010203/040506"},
            {"run lengths of rows without their padding",
             {.width = 1, .type = 2, .pixels = {3, 2, 1, 0x80, 2, 4}},
             "010203/040404"},
            {"run lengths of padded rows",
             {.width = 1, .type = 2, .pixels = {3, 2, 1, 0x80, 3, 4, 0}},
             "010203/040404"},
            {"1 bit: 1 is black",
             {.width = 3, .height = 1, .bits = 1, .pixels = {0x40, 0}},
             "FFFFFF 000000 FFFFFF"},
            {"1 bit with a map",
             {.width = 2,
              .height = 1,
              .bits = 1,
              .mapType = 1,
              .map = {9, 255, 0, 0, 0, 7},
              .pixels = {0x40, 0}},
             "090000 FF0007"},
            {"4 bits", {.width = 3, .height = 1, .bits = 4, .pixels = {0x0F, 0x80}}, "000000 FFFFFF 888888"},
            {"8 bits, greys", {.height = 1, .bits = 8, .pixels = {5, 200}}, "050505 C8C8C8"},
            {"8 bits with a map of odd length; others black",
             {.width = 3,
              .height = 1,
              .bits = 8,
              .mapType = 1,
              .map = {1, 2, 3, 4, 5, 6, 7},
              .pixels = {0, 1, 2, 0}},
             "010305 020406 000000"},
            {"runs and escapes", packed({0x80, 3, 7, 1, 0x80, 0, 0x80, 1, 9}),
             "070707 070707 070707 070707/010101 808080 090909 090909"},
            {"runs across rows", packed({0x80, 5, 7, 1, 2}),
             "070707 070707 070707 070707/070707 070707 010101 020202"},
            {"runs beyond the picture", packed({0x80, 255, 7}),
             "070707 070707 070707 070707/070707 070707 070707 070707"},
            {"cut inside a run", packed({1, 2, 3, 4, 5, 0x80, 3}),
             "010101 020202 030303 040404/050505 FFFFFF FFFFFF FFFFFF"},
            {"cut inside a row",
             {.pixels = {0, 0, 255, 0, 255, 0, 255, 0, 0, 255}},
             "FF0000 00FF00/0000FF FFFFFF"},
            {"no pixels", {}, kUnsupported},
            {"16 bits", {.bits = 16, .pixels = four}, kUnsupported},
            {"a type that wraps another format", {.type = 4, .pixels = four}, kUnsupported},
            {"no width", {.width = 0, .pixels = four}, kUnsupported},
            {"too large", {.width = -1, .height = -1, .pixels = four}, kTooLarge},
            {"large without the bytes for it",
             {.width = 30000, .height = 30000, .pixels = four},
             kUnsupported},
        });
}

} // namespace
} // namespace pictorel::codecs::testing
