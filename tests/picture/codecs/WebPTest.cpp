// WebP files made by the library's encoder, in containers put together here.
#include "MadeExif.h"
#include "MadeProfiles.h"
#include "PictureSupport.h"

#include <webp/encode.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace pictorel::codecs::testing {
namespace {

constexpr float kLossless = -1;

// The file of one picture, without the RIFF header: its chunks.
ByteBuffer ImageChunks(const PixelArray& picture, float quality) {
    std::uint8_t* out = nullptr;
    const auto stride = static_cast<int>(picture.Stride());
    const std::size_t bytes =
        quality == kLossless
            ? WebPEncodeLosslessBGRA(picture.Row(0), picture.Width(), picture.Height(), stride, &out)
            : WebPEncodeBGRA(picture.Row(0), picture.Width(), picture.Height(), stride, quality, &out);
    constexpr std::size_t kHeader = 12;
    ByteBuffer chunks(out + std::min(bytes, kHeader), out + bytes);
    WebPFree(out);
    return chunks;
}

ByteBuffer Riff(const ByteBuffer& chunks) {
    return Bytes()
        .Text("RIFF")
        .Le32({static_cast<std::int64_t>(chunks.size() + 4)})
        .Text("WEBP")
        .Append(chunks)
        .Done();
}

ByteBuffer MakeWebP(const PixelArray& picture, float quality = kLossless) {
    return Riff(ImageChunks(picture, quality));
}

Bytes& AppendChunk(Bytes& file, std::string_view name, ByteView data) {
    file.Text(name).Le32({static_cast<std::int64_t>(data.size())}).Append(data);
    return data.size() % 2 == 1 ? file.U8({0}) : file;
}

void AppendLe24(Bytes& file, int value) {
    file.U8({value & 255, value >> 8 & 255, value >> 16});
}

ByteBuffer CanvasChunk(int flags, int width, int height) {
    Bytes content;
    content.U8({flags, 0, 0, 0});
    AppendLe24(content, width - 1);
    AppendLe24(content, height - 1);
    Bytes chunk;
    return AppendChunk(chunk, "VP8X", content.Done()).Done();
}

struct Beside {
    ByteBuffer icc;
    ByteBuffer exif;
    ByteBuffer xmp;
};
ByteBuffer MakeExtended(const PixelArray& picture, const Beside& beside) {
    Bytes file;
    file.Append(CanvasChunk(0x20 | 0x08 | 0x04, picture.Width(), picture.Height()));
    AppendChunk(file, "ICCP", beside.icc);
    const ByteBuffer image = ImageChunks(picture, kLossless);
    // The encoder writes a canvas of its own where there is alpha.
    file.Append(std::string_view(reinterpret_cast<const char*>(image.data()), 4) == "VP8X"
                    ? ByteView(image).subspan(18)
                    : ByteView(image));
    AppendChunk(file, "EXIF", beside.exif);
    AppendChunk(file, "XMP ", beside.xmp);
    return Riff(file.Done());
}

TEST(WebP, LosslessPixelsComeBackAsTheyWere) {
    for (const bool withAlpha : {false, true}) {
        for (const auto& [width, height] : {std::pair{1, 1}, {700, 1}, {1, 700}, {61, 43}, {333, 217}}) {
            PixelArray picture = MakePicture(width, height, withAlpha);
            std::uint8_t* const rows = picture.WritableRows();
            for (int y = 0; y < height; ++y) { // the encoder drops the colour of what is not seen
                for (std::uint8_t* p = rows + y * picture.Stride();
                     p < rows + y * picture.Stride() + 4 * width; p += 4) {
                    p[3] = std::max<std::uint8_t>(p[3], 1);
                }
            }
            EXPECT_TRUE(SamePixels(Read(MakeWebP(picture)), picture)) << width << ' ' << height << withAlpha;
        }
    }
}

TEST(WebP, LossyPixelsAreNear) {
    PixelArray slope(64, 48);
    std::uint8_t* const rows = slope.WritableRows();
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            const std::uint8_t pixel[] = {
                static_cast<std::uint8_t>(60 + x), static_cast<std::uint8_t>(200 - 2 * y),
                static_cast<std::uint8_t>(100 + x + y), static_cast<std::uint8_t>(4 * x)};
            std::memcpy(rows + y * slope.Stride() + std::ptrdiff_t{4} * x, pixel, 4);
        }
    }
    const PixelArray again = Read(MakeWebP(slope, 95));
    ASSERT_TRUE(again.HasAlpha());
    for (int y = 0; y < 48; ++y) {
        for (int i = 16; i < 4 * 64; ++i) { // the leftmost pixels are all but invisible
            EXPECT_NEAR(again.Row(y)[i], slope.Row(y)[i], i % 4 == 3 ? 2 : 12) << i << ' ' << y;
        }
    }
}

TEST(WebP, TakesProfileExifAndXmp) {
    const PixelArray picture = MakePicture(20, 10);
    const ByteBuffer packet = Bytes().Text("<rdf:RDF>Tea</rdf:RDF>").Done();
    const PixelArray read = Read(MakeExtended(
        picture,
        {WideRgbProfile(), ExifPayload({.orientation = 6, .resolutionX = 300, .resolutionY = 200}), packet}));
    EXPECT_EQ(read.Width(), 10); // a quarter turn
    EXPECT_EQ(read.Height(), 20);
    EXPECT_EQ(read.Details().dotsPerInchX, 200);
    EXPECT_EQ(read.Details().dotsPerInchY, 300);
    EXPECT_EQ(read.Details().xmp, packet);
    EXPECT_EQ(read.Details().exif, MadeExif({.resolutionX = 300, .resolutionY = 200, .thumbnail = false}));
    EXPECT_FALSE(read.Details().icc.empty());
    const std::uint8_t* const before = picture.Row(9); // lower left, which comes to the upper left
    EXPECT_GT(std::abs(read.Row(0)[1] - before[1]) + std::abs(read.Row(0)[2] - before[2]), 2)
        << "not converted";
    const PixelArray plain = Read(MakeExtended(picture, {SrgbProfile(), MadeExif({.orientation = 6}), {}}));
    EXPECT_EQ(std::memcmp(plain.Row(0), before, 4), 0);
}

ByteBuffer MakeAnimation(const PixelArray& frame, int x, int y, int width, int height) {
    Bytes place;
    for (const int number : {x / 2, y / 2, frame.Width() - 1, frame.Height() - 1, 100}) {
        AppendLe24(place, number);
    }
    const ByteBuffer content = place.U8({0}).Append(ImageChunks(frame, kLossless)).Done();
    Bytes file;
    file.Append(CanvasChunk(0x12, width, height));
    AppendChunk(file, "ANIM", ByteBuffer(6));
    AppendChunk(file, "ANMF", content);
    AppendChunk(file, "ANMF", content);
    return Riff(file.Done());
}

TEST(WebP, ShowsTheFirstFrameAtItsPlace) {
    const PixelArray frame = MakePicture(2, 1);
    const std::string pixels = Spelled(frame);
    EXPECT_EQ(SpelledFile(MakeAnimation(frame, 0, 0, 2, 1)), pixels);
    EXPECT_EQ(SpelledFile(MakeAnimation(frame, 2, 2, 4, 3)),
              "00000000 00000000 00000000 00000000/00000000 00000000 00000000 00000000/00000000 00000000 " +
                  pixels.substr(0, 6) + "FF " + pixels.substr(7) + "FF");
    EXPECT_EQ(SpelledFile(MakeAnimation(frame, 4, 2, 4, 3)), kUnsupported); // beside the canvas
}

TEST(WebP, ShowsTheRowsOfAFileCutShort) {
    const PixelArray picture = MakePicture(200, 300);
    for (const float quality : {kLossless, 90.0F}) {
        ByteBuffer file = MakeWebP(picture, quality);
        const PixelArray whole = Read(file);
        file.resize(file.size() * 2 / 3);
        const PixelArray cut = Read(file);
        ASSERT_EQ(cut.Height(), 300);
        EXPECT_EQ(std::memcmp(cut.Row(99), whole.Row(99), whole.RowBytes()), 0) << quality;
        EXPECT_EQ(cut.Row(299)[0], 255);
        EXPECT_EQ(cut.Row(299)[2], 255);
    }
}

TEST(WebP, RefusesWhatTheFileCannotJustify) {
    Bytes file;
    file.Append(CanvasChunk(0, 16384, 16384)).Append(ImageChunks(MakePicture(4, 4), kLossless));
    EXPECT_EQ(SpelledFile(Riff(file.Done())), kUnsupported);
    Bytes wide;
    wide.Append(CanvasChunk(0x12, 1 << 24, 3));
    AppendChunk(wide, "ANIM", ByteBuffer(6));
    EXPECT_EQ(SpelledFile(Riff(wide.Done())).substr(0, 5), "error");
    // A bare lossless header of the largest size, and nothing behind it.
    EXPECT_EQ(SpelledFile(
                  Riff(Bytes().Text("VP8L").Le32({20}).U8({0x2F, 0xFF, 0xFF, 0xFF, 0x0F}).Zeros(15).Done())),
              kUnsupported);
}

} // namespace
} // namespace pictorel::codecs::testing
