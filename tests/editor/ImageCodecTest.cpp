// Picture files on a real disk: by content, refused cleanly, saved whole; and the thrift of working files.
#include "editor/FileSizeLimit.h"
#include "editor/ImageCodec.h"
#include "editor/TemporaryFolder.h"
#include "picture/ImagingError.h"
#include "picture/MadeDetails.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

namespace pictorel::test {
namespace {

namespace fs = std::filesystem;
using test::Random;
using test::SamePixels;

class ImageCodecTest : public ::testing::Test {
  protected:
    // Whether the two names lead to one file.
    bool AreOneFile(const char* a, const char* b) const {
        return fs::equivalent(folder_.Path(a), folder_.Path(b));
    }

    const TemporaryFolder folder_;
    const std::shared_ptr<WorkingFileMemory> memory_ = std::make_shared<WorkingFileMemory>();
    ImageCodec codec_{[](const std::string& fileName) { return fileName.find("/tmp_") != std::string::npos; },
                      memory_};
};

TEST_F(ImageCodecTest, ContentDecidesWhateverTheName) {
    const PixelArray picture = Random({37, 23});
    codec_.Write(picture, folder_.Path("a.bmp"), "bmp");
    for (const char* const name : {"a.jpg", "a", "Übersee 日本.txt"}) {
        fs::copy_file(folder_.Path("a.bmp"), folder_.Path(name));
        PixelArray read;
        EXPECT_TRUE(codec_.Read(folder_.Path(name), read)) << name;
        EXPECT_TRUE(SamePixels(read, picture)) << name;
    }
}

TEST_F(ImageCodecTest, WhatIsNoPictureIsRefusedWithAnEmptyArray) {
    const PixelArray picture = Random({64, 64});
    codec_.Write(picture, folder_.Path("good.bmp"), "BMP");
    codec_.Write(picture, folder_.Path("good.jpg"), "JPG");
    const std::string bmp = ContentOf(folder_.Path("good.bmp"));
    const std::string jpeg = ContentOf(folder_.Path("good.jpg"));
    std::string vast = bmp;
    vast.replace(18, 8, std::string("\x40\x9C\0\0\x40\x9C\0\0", 8)); // 40000 x 40000

    struct Case {
        const char* name;
        std::string content;
    };
    const auto cases = {
        Case{"empty", ""},
        Case{"text", "This is no picture."},
        Case{"signature.bmp", "BM"},
        Case{"header.bmp", bmp.substr(0, 30)},
        Case{"no-pixels.bmp", bmp.substr(0, 54)},
        Case{"signature.jpg", jpeg.substr(0, 3)},
        Case{"header.jpg", jpeg.substr(0, 20)},
        Case{"zeros", std::string(5000, '\0')},
    };
    for (const Case& c : cases) {
        PixelArray read = picture;
        EXPECT_FALSE(codec_.Read(folder_.Make(c.name, c.content), read)) << c.name;
        EXPECT_TRUE(read.IsEmpty()) << c.name;
    }
    PixelArray none = picture;
    EXPECT_THROW(codec_.Read(folder_.Make("vast.bmp", vast), none), ImagingError) << "it says why";
    EXPECT_TRUE(none.IsEmpty());
    PixelArray read = picture;
    EXPECT_FALSE(codec_.Read(folder_.Path("missing.bmp"), read));
    EXPECT_TRUE(read.IsEmpty());
}

TEST_F(ImageCodecTest, AnUnknownFormatLeavesTheFileAlone) {
    const std::string file = folder_.Make("a.xyz", "mine");
    for (const char* const format : {"XYZ", "", "BMPX", "B"}) {
        try {
            codec_.Write(Random({3, 3}), file, format);
            FAIL() << format;
        } catch (const ImagingError& error) {
            EXPECT_EQ(error.Kind(), ImagingFailure::UnsupportedFormat);
            EXPECT_NE(std::string(error.what()).find(format), std::string::npos) << error.what();
        }
    }
    EXPECT_EQ(ContentOf(file), "mine");
}

TEST_F(ImageCodecTest, QualityIsThatOfTheNextFile) {
    const PixelArray picture = Random({200, 150});
    codec_.SetQuality(30);
    codec_.Write(picture, folder_.Path("small.jpg"), "jpg");
    codec_.SetQuality(95);
    codec_.Write(picture, folder_.Path("large.jpg"), "jpg");
    EXPECT_LT(fs::file_size(folder_.Path("small.jpg")) * 2, fs::file_size(folder_.Path("large.jpg")));
}

TEST_F(ImageCodecTest, AFailedSaveLosesNothing) {
    const PixelArray old = Random({20, 20});
    codec_.Write(old, folder_.Path("a.bmp"), "BMP");
    {
        const FileSizeLimit limit(500);
        EXPECT_THROW(codec_.Write(Random({90, 90}), folder_.Path("a.bmp"), "BMP"), ImagingError);
    }
    PixelArray read;
    EXPECT_TRUE(codec_.Read(folder_.Path("a.bmp"), read));
    EXPECT_TRUE(SamePixels(read, old));
}

TEST_F(ImageCodecTest, OnlyWorkingFilesCarryAndBelieveThePrivateSegment) {
    PixelArray picture = Random({40, 30}, test::Alpha::Random);
    picture.SetReduction(0.5);
    picture.SetDetails(MadeDetails());
    codec_.Write(picture, folder_.Path("tmp_1.jpg"), "JPG");
    PixelArray read;
    ASSERT_TRUE(codec_.Read(folder_.Path("tmp_1.jpg"), read));
    EXPECT_TRUE(read.HasAlpha());
    EXPECT_EQ(read.Reduction(), 0.5);
    EXPECT_EQ(read.Details(), picture.Details());

    fs::copy_file(folder_.Path("tmp_1.jpg"), folder_.Path("mine.jpg"));
    ASSERT_TRUE(codec_.Read(folder_.Path("mine.jpg"), read));
    EXPECT_FALSE(read.HasAlpha());
    EXPECT_EQ(read.Reduction(), 1.0);
}

TEST_F(ImageCodecTest, TheSamePictureIsEncodedOnce) {
    PixelArray picture = Random({60, 40});
    codec_.Write(picture, folder_.Path("tmp_history.jpg"), "JPG");
    codec_.Write(picture, folder_.Path("tmp_preview0.jpg"), "JPG");
    EXPECT_TRUE(AreOneFile("tmp_history.jpg", "tmp_preview0.jpg"));

    // The second name goes, as that of an intermediate file does, and comes back.
    fs::remove(folder_.Path("tmp_preview0.jpg"));
    codec_.Write(picture, folder_.Path("tmp_preview0.jpg"), "JPG");
    EXPECT_TRUE(AreOneFile("tmp_history.jpg", "tmp_preview0.jpg"));

    PixelArray read; // as undo does
    ASSERT_TRUE(codec_.Read(folder_.Path("tmp_history.jpg"), read));
    codec_.Write(read, folder_.Path("tmp_preview0.jpg"), "JPG");
    EXPECT_TRUE(AreOneFile("tmp_history.jpg", "tmp_preview0.jpg"));
}

TEST_F(ImageCodecTest, TheUsersFilesAreNeverLinked) {
    const PixelArray picture = Random({60, 40});
    codec_.Write(picture, folder_.Path("tmp_history.jpg"), "JPG");
    codec_.Write(picture, folder_.Path("mine.jpg"), "JPG");
    codec_.Write(picture, folder_.Path("copy.jpg"), "JPG");
    EXPECT_FALSE(AreOneFile("tmp_history.jpg", "mine.jpg"))
        << "deleting or editing one would reach the other";
    EXPECT_FALSE(AreOneFile("mine.jpg", "copy.jpg"));
}

TEST_F(ImageCodecTest, AChangedPictureIsEncodedAndItsTwinStaysAsItWas) {
    PixelArray picture = Random({60, 40});
    codec_.Write(picture, folder_.Path("tmp_1.jpg"), "JPG");
    codec_.Write(picture, folder_.Path("tmp_2.jpg"), "JPG"); // one file by now
    const std::string before = ContentOf(folder_.Path("tmp_1.jpg"));

    picture.WritableRows()[0] ^= 0xFFU;
    codec_.Write(picture, folder_.Path("tmp_2.jpg"), "JPG");
    EXPECT_FALSE(AreOneFile("tmp_1.jpg", "tmp_2.jpg"));
    EXPECT_EQ(ContentOf(folder_.Path("tmp_1.jpg")), before);
    EXPECT_NE(ContentOf(folder_.Path("tmp_2.jpg")), before);
}

TEST_F(ImageCodecTest, AFailedWorkingFileIsNotRemembered) {
    const PixelArray picture = Random({60, 40});
    {
        const FileSizeLimit limit(100);
        EXPECT_THROW(codec_.Write(picture, folder_.Path("tmp_1.jpg"), "JPG"), ImagingError);
    }
    EXPECT_TRUE(folder_.Names().empty());
    codec_.Write(picture, folder_.Path("tmp_2.jpg"), "JPG");
    PixelArray read;
    EXPECT_TRUE(codec_.Read(folder_.Path("tmp_2.jpg"), read));
}

// A decoder that does not run; one that refuses; one that has a picture.
struct MadeDecoder : PictureDecoder {
    enum class Manner { Missing, Refusing, Working } manner;
    int asked = 0;

    explicit MadeDecoder(Manner how) : manner(how) {}
    std::optional<PixelArray> Decode(const std::string& /*fileName*/) override {
        ++asked;
        if (manner == Manner::Refusing) {
            throw ImagingError(ImagingFailure::UnsupportedFormat, "refused");
        }
        return manner == Manner::Working ? std::optional(Random({5, 4})) : std::nullopt;
    }
};

TEST_F(ImageCodecTest, StrangeFilesAreReadByTheDecoderAlone) {
    const PixelArray picture = Random({64, 64});
    for (const char* const name : {"a.jpg", "a.png", "a.bmp", "tmp_1.jpg"}) {
        codec_.Write(picture, folder_.Path(name),
                     std::string_view(name).substr(std::string_view(name).size() - 3));
    }
    const auto codecWith = [&](MadeDecoder::Manner manner) {
        auto decoder = std::make_shared<MadeDecoder>(manner);
        return std::pair(decoder, ImageCodec(
                                      [](const std::string& fileName) {
                                          return fileName.find("/tmp_") != std::string::npos;
                                      },
                                      memory_, codecs::CodecTable(), decoder));
    };
    PixelArray read;

    auto [working, byWorking] = codecWith(MadeDecoder::Manner::Working);
    EXPECT_TRUE(byWorking.Read(folder_.Path("a.bmp"), read));
    EXPECT_EQ(read.Width(), 5);
    EXPECT_TRUE(byWorking.Read(folder_.Path("tmp_1.jpg"), read));
    EXPECT_EQ(read.Width(), 64) << "our own are read here";
    EXPECT_EQ(working->asked, 1);

    auto [refusing, byRefusing] = codecWith(MadeDecoder::Manner::Refusing);
    for (const char* const name : {"a.jpg", "a.png", "a.bmp"}) {
        EXPECT_FALSE(byRefusing.Read(folder_.Path(name), read)) << name;
        EXPECT_TRUE(read.IsEmpty());
    }

    auto [missing, byMissing] = codecWith(MadeDecoder::Manner::Missing);
    EXPECT_TRUE(byMissing.Read(folder_.Path("a.jpg"), read));
    EXPECT_TRUE(byMissing.Read(folder_.Path("a.png"), read));
    EXPECT_TRUE(SamePixels(read, picture));
    try {
        byMissing.Read(folder_.Path("a.bmp"), read);
        FAIL();
    } catch (const ImagingError& error) {
        EXPECT_NE(std::string(error.what()).find("pictorel_decoder"), std::string::npos);
    }
}

} // namespace
} // namespace pictorel::test
