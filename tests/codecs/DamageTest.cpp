// Every format: pictures come through a file, and no damage to a file does worse than an error.
#include "PictureSupport.h"

#include <string_view>

namespace pictorel::codecs::testing {
namespace {

struct Format {
    std::string_view extension;
    bool isExact; // pixels come back as they were
    bool holdsAlpha;
};
constexpr Format kFormats[] = {{"PNG", true, true},  {"GIF", false, false}, {"TIF", true, true},
                               {"BMP", true, false}, {"J2K", true, true},   {"RAS", true, false},
                               {"PCX", true, false}, {"TGA", true, true}};

TEST(Formats, RoundTripPicturesOfAllShapes) {
    constexpr struct {
        int width;
        int height;
    } kShapes[] = {{1, 1}, {1, 700}, {700, 1}, {2, 2}, {3, 5}, {64, 64}, {333, 217}, {1001, 700}};
    for (const Format& format : kFormats) {
        for (const auto& shape : kShapes) {
            for (const bool withAlpha : {false, true}) {
                const PixelArray picture =
                    MakePicture(shape.width, shape.height, withAlpha && format.holdsAlpha,
                                format.isExact ? 1 << 24 : 200);
                PixelArray again = Read(Write(format.extension, picture));
                EXPECT_TRUE(SamePixels(picture, again))
                    << format.extension << ' ' << shape.width << ' ' << shape.height;
            }
        }
    }
}

// Whatever the bytes, reading ends in a picture or in an ImagingError.
void ExpectSurvives(ByteView file) {
    try {
        const PixelArray picture = Read(file);
        EXPECT_FALSE(picture.IsEmpty());
    } catch (const ImagingError& error) {
        EXPECT_STRNE(error.what(), "");
    }
}

TEST(Formats, SurviveBeingCutShort) {
    for (const Format& format : kFormats) {
        const ByteBuffer file = Write(format.extension, MakePicture(61, 43, format.holdsAlpha));
        const std::size_t step = std::max<std::size_t>(1, file.size() / 400);
        for (std::size_t length = 0; length < file.size(); length += length < 300 ? 1 : step) {
            // Of its own size, so that reading beyond the end is seen.
            const ByteBuffer cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            ExpectSurvives(cut);
        }
    }
}

TEST(Formats, SurviveDamagedBytes) {
    std::uint32_t random = 99;
    const auto next = [&random] { return (random = random * 1664525 + 1013904223) >> 8; };
    for (const Format& format : kFormats) {
        const ByteBuffer file = Write(format.extension, MakePicture(61, 43, format.holdsAlpha));
        for (std::size_t i = 0; i < 1200; ++i) {
            ByteBuffer damaged = file;
            // Headers are hit oftenest; TIFF has its directory at the end.
            const std::size_t reach =
                i % 3 == 0 ? damaged.size() : std::min<std::size_t>(damaged.size(), 200);
            for (std::size_t hits = 0; hits <= i % 4; ++hits) {
                const std::size_t at = next() % reach;
                damaged[i % 3 == 1 ? damaged.size() - 1 - at : at] = static_cast<std::uint8_t>(next());
            }
            ExpectSurvives(damaged);
        }
    }
}

TEST(Formats, AreKnownByContentAlone) {
    EXPECT_EQ(FindCodecByContent({}), nullptr);
    for (const Format& format : kFormats) {
        const ByteBuffer file = Write(format.extension, MakePicture(5, 5));
        ASSERT_NE(FindCodecByContent(file), nullptr);
        EXPECT_EQ(FindCodecByContent(file)->extension, format.extension);
        for (std::size_t length = 0; length < 4; ++length) {
            const ByteBuffer beginning(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length));
            EXPECT_EQ(FindCodecByContent(beginning), nullptr);
        }
    }
    EXPECT_EQ(FindCodecByContent(Bytes().Text("BM, which begins many a letter too").Done()), nullptr);
}

} // namespace
} // namespace pictorel::codecs::testing
