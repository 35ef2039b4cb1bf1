// JPEG files and working files written: held against libjpeg on one thread, byte for byte.
#include "picture/ImagingError.h"
#include "picture/codecs/MadeExif.h"
#include "picture/codecs/MadeJpeg.h"
#include "picture/codecs/MadeProfiles.h"
#include "picture/codecs/jpeg/JpegCodec.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

namespace pictorel::codecs {
namespace {

using testing::Difference;
using testing::ExifPayload;
using testing::JpegRecipe;
using testing::LibraryPixels;
using testing::MadeExif;
using testing::MadeJpeg;
using testing::MadeNoise;
using testing::MadePicture;
using testing::Solid;

constexpr std::array<std::pair<int, int>, 7> kSizes{
    {{1, 1}, {3, 65}, {64, 64}, {70, 128}, {127, 129}, {611, 511}, {1601, 333}}};

Metadata FullDetails() {
    Metadata details;
    details.exif = MadeExif({true, 1, 300, 300, 2});
    details.icc = testing::SrgbProfile();
    details.dotsPerInchX = details.dotsPerInchY = 300;
    return details;
}

TEST(JpegWriter, SameBytesAsTheLibraryInOneGo) {
    for (const auto& [width, height] : kSizes) {
        for (const int quality : {100, 75}) {
            PixelArray picture = MadePicture(width, height);
            JpegRecipe recipe{.quality = quality, .restartRows = 1};
            ASSERT_EQ(WriteJpeg(picture, {quality, false}), MadeJpeg(picture, recipe))
                << width << " x " << height;

            picture.SetDetails(FullDetails());
            recipe.density = 300;
            recipe.markers = {{jpeg::kApp1, ExifPayload({true, 1, 300, 300, 2})}};
            recipe.icc = FullDetails().icc;
            ASSERT_EQ(WriteJpeg(picture, {quality, false}), MadeJpeg(picture, recipe))
                << width << " x " << height;
        }
    }
}

TEST(JpegWriter, TransparencyIsLaidOverWhite) {
    PixelArray picture = Solid(90, 70, {100, 150, 200, 51}); // a fifth
    picture.SetHasAlpha(true);
    const PixelArray back = ReadJpeg(WriteJpeg(picture, {}), {});
    EXPECT_LE(Difference(back, Solid(90, 70, {224, 234, 244, 255})), 1);
    EXPECT_FALSE(back.HasAlpha());
}

TEST(JpegWriter, OversizedMetadataDoesNotStopIt) {
    PixelArray picture = MadePicture(20, 20);
    Metadata details;
    details.exif = MadeExif({});
    details.exif.resize(70000);
    details.icc = testing::SrgbProfile();
    details.icc.resize(200000); // several chunks
    picture.SetDetails(details);
    const Metadata back = ReadJpeg(WriteJpeg(picture, {}), {}).Details();
    EXPECT_TRUE(back.exif.empty());
    EXPECT_EQ(back.icc, details.icc);
}

TEST(JpegWorkingFile, NoLevelMovesByMoreThanTwo) {
    for (const auto& [width, height] : kSizes) {
        for (PixelArray picture : {MadePicture(width, height), MadeNoise(width, height)}) {
            picture.SetHasAlpha(true); // noise in alpha, colours under full transparency
            const ByteBuffer file = WriteJpeg(picture, {10, true});
            EXPECT_LE(Difference(ReadJpeg(file, {true}), picture), 2) << width << " x " << height;
            // Any other reader, on one thread, sees the same colours.
            PixelArray opaque = ReadJpeg(file, {false});
            EXPECT_FALSE(opaque.HasAlpha());
            EXPECT_EQ(Difference(LibraryPixels(file), opaque), 0) << width << " x " << height;
        }
    }
}

TEST(JpegWorkingFile, CarriesWhatJpegCannot) {
    PixelArray picture = MadeNoise(333, 222);
    picture.SetHasAlpha(true);
    picture.SetReduction(0.123456789);
    Metadata details = FullDetails();
    details.exif.resize(100000); // more than a segment holds
    details.icc = testing::WideRgbProfile();
    details.dotsPerInchY = 72.5;
    picture.SetDetails(details);
    const ByteBuffer file = WriteJpeg(picture, {100, true});

    const PixelArray back = ReadJpeg(file, {true});
    EXPECT_TRUE(back.HasAlpha());
    EXPECT_EQ(back.Reduction(), 0.123456789);
    EXPECT_EQ(back.Details(), details);
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            ASSERT_EQ(back.Row(y)[x * 4 + 3], picture.Row(y)[x * 4 + 3]);
        }
    }

    const PixelArray stranger = ReadJpeg(file, {false});
    EXPECT_FALSE(stranger.HasAlpha());
    EXPECT_EQ(stranger.Reduction(), 1.0);
    EXPECT_EQ(stranger.Details(), Metadata{});
    EXPECT_EQ(stranger.Row(5)[3], 255);
}

TEST(JpegWorkingFile, DamagedBlockIsRefusedAndOrdinaryFilesAreRead) {
    PixelArray picture = MadeNoise(200, 150);
    picture.SetHasAlpha(true);
    const ByteBuffer file = WriteJpeg(picture, {100, true});
    const std::vector<JpegSegment> segments = JpegSegments(file);
    int refused = 0;
    for (const JpegSegment& segment : segments) {
        if (segment.marker != jpeg::kApp11) {
            continue;
        }
        for (std::size_t at = 14; at < segment.payload.size(); at += segment.payload.size() / 50) {
            ByteBuffer damaged = file;
            damaged[segment.offset + 4 + at] ^= 0x55;
            try {
                ReadJpeg(damaged, {true});
            } catch (const ImagingError& error) {
                EXPECT_EQ(error.Kind(), ImagingFailure::UnsupportedFormat);
                ++refused;
            }
        }
    }
    EXPECT_GT(refused, 40);
    const ByteBuffer ordinary = MadeJpeg(picture, {});
    EXPECT_EQ(Difference(ReadJpeg(ordinary, {true}), LibraryPixels(ordinary)), 0);
}

TEST(JpegCodecTable, IsFoundByContentAndExtension) {
    const ByteBuffer file = MadeJpeg(MadePicture(5, 5), {});
    ASSERT_NE(FindCodecByContent(file), nullptr);
    EXPECT_EQ(FindCodecByContent(file), FindCodecByExtension("jpg"));
    EXPECT_EQ(FindCodecByContent(ByteView(file).first(2)), nullptr);
}

} // namespace
} // namespace pictorel::codecs
