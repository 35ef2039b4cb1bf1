// PNG files that are cut off, damaged or made to do harm: what can be shown is shown, the rest is refused.
#include "MadeExif.h"
#include "MadePng.h"
#include "PictureSupport.h"
#include "picture/codecs/Exif.h"

#include <chrono>
#include <string>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

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

// Faults behind which there is a whole picture.
TEST(Png, FaultsThatCostNothing) {
    const PixelArray picture = MakePicture(40, 30);
    const ByteBuffer plain = Write("png", picture);
    ByteBuffer rows;
    for (int y = 0; y < picture.Height(); ++y) {
        rows.push_back(0);
        for (int x = 0; x < picture.Width(); ++x) {
            const std::uint8_t* const pixel = picture.Row(y) + std::ptrdiff_t{4} * x;
            rows.insert(rows.end(), {pixel[2], pixel[1], pixel[0]});
        }
    }
    const ByteBuffer data = Deflated(rows);
    const auto piece = [&data](std::size_t from, std::size_t to) {
        return Chunk("IDAT", {data.begin() + static_cast<std::ptrdiff_t>(from),
                              data.begin() + static_cast<std::ptrdiff_t>(std::min(to, data.size()))});
    };
    const auto broken = [](ByteBuffer chunk) {
        chunk.back() ^= 1;
        return chunk;
    };
    Bytes single;
    for (std::size_t i = 0; i < data.size(); ++i) {
        single.Append(piece(i, i + 1)).Append(i % 100 == 0 ? Chunk("IDAT", {}) : ByteBuffer{});
    }
    ByteBuffer badSum = data;
    badSum.back() ^= 1;
    ByteBuffer smallWindow = data;
    smallWindow[0] = 0x08;
    smallWindow[1] = 0x1D;
    const ByteBuffer end = Chunk("IEND", {});
    const ByteBuffer text = Chunk("tEXt", {'a', 0, 'b'});
    const std::size_t half = data.size() / 2;
    const ByteBuffer whole = piece(0, data.size());
    const struct {
        const char* name;
        ByteBuffer afterHeader;
    } cases[] = {
        {"pieces of one byte, and empty ones", Bytes().Append(single.Done()).Append(end).Done()},
        {"a text between the pieces",
         Bytes().Append(piece(0, half)).Append(text).Append(piece(half, data.size())).Append(end).Done()},
        {"a piece with a wrong checksum",
         Bytes().Append(broken(piece(0, half))).Append(piece(half, data.size())).Append(end).Done()},
        {"wrong checksum of the stream", Bytes().Append(Chunk("IDAT", badSum)).Append(end).Done()},
        {"no checksum of the stream", Bytes().Append(piece(0, data.size() - 4)).Append(end).Done()},
        {"a window said to be too small", Bytes().Append(Chunk("IDAT", smallWindow)).Append(end).Done()},
        {"bytes behind the stream",
         Bytes().Append(whole).Append(Chunk("IDAT", {1, 2, 3})).Append(end).Done()},
        {"no end", whole},
        {"bytes behind the end", Bytes().Append(whole).Append(end).Text("and more").Done()},
        {"two headers", Bytes().Append(Chunk("IHDR", Header({.width = 9}))).Append(whole).Append(end).Done()},
        {"a chunk without a name", Bytes().Append(Chunk("a\1c\2", {1})).Append(whole).Append(end).Done()},
        {"a broken text", Bytes().Append(broken(text)).Append(whole).Append(end).Done()},
    };
    for (const auto& c : cases) {
        const ByteBuffer file = Bytes()
                                    .Append(ByteView(plain).first(8))
                                    .Append(Chunk("IHDR", Header({.width = 40, .height = 30})))
                                    .Append(c.afterHeader)
                                    .Done();
        EXPECT_TRUE(SamePixels(Read(file), picture)) << c.name;
    }
}

// Chunks that unpack to far more than they are, by themselves or in great number.
TEST(Png, BombsInExtraChunksCostNothing) {
    const ByteBuffer bomb = Deflated(ByteBuffer(std::size_t{60} << 20));
    const auto chunk = [&bomb](std::string_view type, std::string_view begin) {
        return Chunk(type, Bytes().Text(begin).Append(bomb).Done());
    };
    Bytes many;
    for (int i = 0; i < 200; ++i) {
        many.Append(chunk("zTXt", std::string_view("a\0\0", 3)));
    }
    Bytes empty;
    for (int i = 0; i < 50000; ++i) {
        empty.Append(Chunk("abCd", {}));
    }
    for (const ByteBuffer& extra : {many.Done(), empty.Done(), chunk("iCCP", std::string_view("a\0\0", 3)),
                                    chunk("iTXt", std::string_view("XML:com.adobe.xmp\0\1\0\0\0", 22)),
                                    chunk("zTXt", std::string_view("Raw profile type exif\0\0", 23))}) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(SpelledFile(MakePng({.colourType = 0, .extra = extra, .rows = {0, 9, 8}})),
                  "090909 080808");
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    }
}

// As a widespread program writes them that knows no chunk for EXIF.
TEST(Png, ExifAsText) {
    const ByteBuffer exif = MadeExif({.orientation = 6});
    std::string text = "\nexif\n " + std::to_string(exif.size() + 6) + "\n457869660000";
    for (std::size_t i = 0; i < exif.size(); ++i) {
        constexpr std::string_view kHex = "0123456789abcdef";
        text += {kHex[exif[i] >> 4], kHex[exif[i] & 15]};
        text += i % 36 == 29 ? "\n" : "";
    }
    const ByteBuffer plain = Bytes().Text("Raw profile type exif").U8({0}).Text(text).Done();
    const ByteBuffer packed =
        Bytes().Text("Raw profile type APP1").U8({0, 0}).Append(Deflated({text.begin(), text.end()})).Done();
    for (const ByteBuffer& chunk : {Chunk("tEXt", plain), Chunk("zTXt", packed)}) {
        const PixelArray picture = Read(MakePng({.colourType = 0, .extra = chunk, .rows = {0, 10, 20}}));
        EXPECT_EQ(Spelled(picture), "0A0A0A/141414");
        EXPECT_EQ(picture.Details().exif, WithUprightOrientation(exif));
    }
}

} // namespace
} // namespace pictorel::codecs::testing
