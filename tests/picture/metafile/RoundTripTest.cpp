// Pictures saved as metafiles come back pixel for pixel, and no damage to such a file does worse than an
// error.
#include "picture/codecs/PictureSupport.h"
#include "picture/metafile/Metafile.h"

#include <string_view>

namespace pictorel::metafile {
namespace {

using codecs::ByteBuffer;
using codecs::ByteView;
using codecs::Codec;
using codecs::testing::MakePicture;
using codecs::testing::SamePixels;

const codecs::CodecTable& Formats() {
    static const codecs::CodecTable table(MetafileCodecs());
    return table;
}

PixelArray Read(ByteView file) {
    return Formats().FindByContent(file)->read(file, {});
}

TEST(RoundTrip, GivesTheSamePixelsAtAnyResolution) {
    constexpr struct {
        int width;
        int height;
    } kShapes[] = {{1, 1}, {1, 700}, {700, 1}, {2, 2}, {3, 5}, {333, 217}, {1001, 700}, {32767, 3}, {2, 40}};
    constexpr double kResolutions[] = {0, 72, 96, 300, 1200, 0.5, 13369, 20000};
    for (const Codec& codec : MetafileCodecs()) {
        for (const auto& shape : kShapes) {
            for (const double resolution : kResolutions) {
                PixelArray picture = MakePicture(shape.width, shape.height);
                Metadata details;
                details.dotsPerInchX = resolution;
                details.dotsPerInchY = resolution / 2;
                picture.SetDetails(details);
                const ByteBuffer file = codec.write(picture, {});
                ASSERT_EQ(Formats().FindByContent(file)->name, codec.name);
                const PixelArray again = Read(file);
                EXPECT_TRUE(SamePixels(picture, again))
                    << codec.name << ' ' << shape.width << " x " << shape.height << " at " << resolution;
                if (resolution >= 72 && resolution <= 1200) {
                    EXPECT_DOUBLE_EQ(again.Details().dotsPerInchX, resolution) << codec.name;
                    EXPECT_DOUBLE_EQ(again.Details().dotsPerInchY, resolution / 2) << codec.name;
                }
            }
        }
    }
}

TEST(RoundTrip, GivesTheSamePixelsOnAVeryLongSheet) {
    constexpr struct {
        int width;
        int height;
        double dotsPerInchX;
        double dotsPerInchY;
    } kSheets[] = {
        {1, 31336, 7.38462, 96},       // of metres, whose length in units an inch is far from a whole number
        {32767, 1, 1326.49, 426147.8}, // whose pixels, counted in inches, are a hair more than the most
    };
    for (const Codec& codec : MetafileCodecs()) {
        for (const auto& sheet : kSheets) {
            PixelArray picture = MakePicture(sheet.width, sheet.height);
            Metadata details;
            details.dotsPerInchX = sheet.dotsPerInchX;
            details.dotsPerInchY = sheet.dotsPerInchY;
            picture.SetDetails(details);
            EXPECT_TRUE(SamePixels(picture, Read(codec.write(picture, {})))) << codec.name << sheet.width;
        }
    }
}

TEST(RoundTrip, LaysTransparencyOverWhite) {
    PixelArray picture = MakePicture(2, 1, true);
    std::uint8_t* const pixels = picture.WritableRows();
    for (int i = 0; i < 8; ++i) {
        pixels[i] = i % 4 == 3 ? std::uint8_t(i < 4 ? 0 : 128) : std::uint8_t{0};
    }
    for (const Codec& codec : MetafileCodecs()) {
        EXPECT_EQ(codecs::testing::Spelled(Read(codec.write(picture, {}))), "FFFFFF 7F7F7F") << codec.name;
    }
}

TEST(RoundTrip, AFileCutShortShowsItsFirstRows) {
    const PixelArray picture = MakePicture(30, 20);
    for (const Codec& codec : MetafileCodecs()) {
        const ByteBuffer file = codec.write(picture, {});
        const PixelArray again = Read(ByteView(file).first(file.size() - 700));
        ASSERT_EQ(again.Height(), 20) << codec.name;
        EXPECT_EQ(std::memcmp(again.Row(19), picture.Row(19), picture.RowBytes()), 0) << codec.name;
        EXPECT_EQ(again.Row(0)[0], 255) << codec.name << ": the rows at the top are missing";
    }
}

// Whatever the bytes, reading ends in a picture or in an ImagingError.
void ExpectSurvives(ByteView file) {
    const Codec* const codec = Formats().FindByContent(file);
    if (codec == nullptr) {
        return;
    }
    try {
        EXPECT_FALSE(codec->read(file, {}).IsEmpty());
    } catch (const ImagingError& error) {
        EXPECT_STRNE(error.what(), "");
    }
}

TEST(RoundTrip, DamageDoesNoWorseThanAnError) {
    std::uint32_t random = 7;
    const auto next = [&random] { return (random = random * 1664525 + 1013904223) >> 8; };
    for (const Codec& codec : MetafileCodecs()) {
        const ByteBuffer file = codec.write(MakePicture(23, 17), {});
        for (std::size_t length = 0; length < file.size(); length += length < 250 ? 1 : 37) {
            const ByteBuffer cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            ExpectSurvives(cut);
        }
        for (int i = 0; i < 300; ++i) {
            ByteBuffer damaged = file;
            for (int hits = 0; hits <= i % 4; ++hits) {
                damaged[next() % 240] = static_cast<std::uint8_t>(next());
            }
            ExpectSurvives(damaged);
        }
    }
}

} // namespace
} // namespace pictorel::metafile
