// Writing TIFF: pixels come back bit for bit, and what else a picture has travels along.
#include "picture/codecs/Exif.h"
#include "picture/codecs/MadeExif.h"
#include "picture/codecs/MadeProfiles.h"
#include "picture/codecs/MadeTiff.h"
#include "picture/codecs/PictureSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

TEST(TiffWriter, WrittenFilesComeBackBitForBit) {
    for (const bool alpha : {false, true}) {
        for (const auto& [width, height] : {std::pair{1, 1}, {37, 29}, {700, 500}, {3, 4001}}) {
            PixelArray picture = MakePicture(width, height, alpha);
            SCOPED_TRACE(width);
            Metadata details;
            details.dotsPerInchX = 300;
            details.dotsPerInchY = 72.5;
            details.icc = SrgbProfile();
            picture.SetDetails(details);
            const PixelArray back = Read(Write("tif", picture));
            EXPECT_TRUE(SamePixels(back, picture));
            EXPECT_EQ(back.Details(), details);
        }
    }
    // What a screen looks like is packed in another way than a photograph.
    const PixelArray flat = MakePicture(700, 500, false, 2);
    EXPECT_TRUE(SamePixels(Read(Write("tif", flat)), flat));
}

TEST(TiffWriter, WrittenFilesAreWhatOthersRead) {
    PixelArray picture = MakePicture(301, 200, true);
    ByteBuffer file = Write("tif", picture);
    TiffInMemory memory(file);
    std::vector<std::uint32_t> raster(std::size_t{301} * 200);
    std::uint16_t count = 0;
    const std::uint16_t* extra = nullptr;
    const char* software = nullptr;
    ASSERT_NE(memory.Handle(), nullptr);
    ASSERT_EQ(TIFFGetField(memory.Handle(), TIFFTAG_EXTRASAMPLES, &count, &extra), 1);
    EXPECT_EQ(extra[0], EXTRASAMPLE_UNASSALPHA);
    ASSERT_EQ(TIFFGetField(memory.Handle(), TIFFTAG_SOFTWARE, &software), 1);
    EXPECT_STREQ(software, "Pictorel");
    std::vector<std::uint8_t> row(static_cast<std::size_t>(TIFFScanlineSize(memory.Handle())));
    for (int y = 0; y < 200; ++y) {
        ASSERT_EQ(TIFFReadScanline(memory.Handle(), row.data(), static_cast<std::uint32_t>(y)), 1);
        for (int x = 0; x < 301; ++x) {
            const Pixel pixel = PixelAt(picture, x, y);
            ASSERT_TRUE(std::equal(pixel.begin(), pixel.end(), row.begin() + std::ptrdiff_t{4} * x));
        }
    }
}

TEST(TiffWriter, ExifTravelsBothWays) {
    for (const bool littleEndian : {true, false}) {
        PixelArray picture = MakePicture(20, 10);
        Metadata details;
        details.exif = MadeExif({.littleEndian = littleEndian, .thumbnail = false});
        details.dotsPerInchX = details.dotsPerInchY = 72;
        picture.SetDetails(details);
        const ByteBuffer file = Write("tif", picture);
        const PixelArray back = Read(file);
        EXPECT_TRUE(SamePixels(back, picture));
        const ByteBuffer& exif = back.Details().exif;
        EXPECT_EQ(ExifOrientation(exif), 1);
        EXPECT_EQ(ExifResolution(exif).dotsPerInchX, 72);
        constexpr std::string_view kMaker("A maker");
        EXPECT_NE(std::search(exif.begin(), exif.end(), kMaker.begin(), kMaker.end()), exif.end());
        // From then on nothing changes any more.
        EXPECT_EQ(Read(Write("tif", back)).Details().exif, exif);
    }
    // Damaged blocks are left out, and what is no EXIF is not made into some.
    PixelArray picture = MakePicture(20, 10);
    for (const ByteBuffer& broken : {ByteBuffer{1, 2, 3}, ByteBuffer{'I', 'I', 42, 0, 255, 255, 255, 255}}) {
        Metadata details;
        details.exif = broken;
        picture.SetDetails(details);
        const PixelArray back = Read(Write("tif", picture));
        EXPECT_TRUE(SamePixels(back, picture));
        EXPECT_TRUE(back.Details().exif.empty());
    }
}

TEST(TiffWriter, ExifDirectoriesAreCopied) {
    // The exposure time stands in a directory of its own, linked from the page.
    ByteBuffer file = MadeTiff({.name = "plain", .width = 2, .height = 1, .tags = [](TIFF* tiff) {
                                    TIFFSetField(tiff, TIFFTAG_MODEL, "Camera 9");
                                    TIFFSetField(tiff, TIFFTAG_EXIFIFD, std::uint64_t{0x11223344});
                                }});
    const std::array<std::uint8_t, 4> link{0x44, 0x33, 0x22, 0x11};
    const auto found = std::search(file.begin(), file.end(), link.begin(), link.end());
    ASSERT_NE(found, file.end());
    const auto at = static_cast<std::size_t>(found - file.begin());
    file.resize((file.size() + 1) / 2 * 2);
    const std::size_t directory = file.size();
    for (int i = 0; i < 4; ++i) {
        file[at + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(directory >> 8 * i);
    }
    const ByteBuffer tail = Bytes()
                                .Le16({1, 0x829A, 5}) // one entry: the exposure time, a fraction
                                .Le32({1, static_cast<std::int64_t>(directory) + 18, 0, 1, 0xABCDEF})
                                .Done();
    file.insert(file.end(), tail.begin(), tail.end());
    const ByteBuffer exif = Read(file).Details().exif;
    const ByteBuffer fraction = Bytes().Le32({1, 0xABCDEF}).Done();
    EXPECT_NE(std::search(exif.begin(), exif.end(), fraction.begin(), fraction.end()), exif.end());
    // Through a file of ours and back.
    PixelArray picture = MakePicture(2, 2);
    Metadata details;
    details.exif = exif;
    picture.SetDetails(details);
    const ByteBuffer again = Read(Write("tif", picture)).Details().exif;
    EXPECT_NE(std::search(again.begin(), again.end(), fraction.begin(), fraction.end()), again.end());
}

} // namespace
} // namespace pictorel::codecs::testing
