// Converting a picture file to another size.
#include "editor/FileConverter.h"
#include "editor/PictureFileCodec.h"
#include "editor/TemporaryFolder.h"
#include "picture/ImagingError.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

namespace pictorel::test {
namespace {

using test::Random;

// Gives one picture for every file and records what is asked for.
class RecordingCodec : public ImageCodec {
  public:
    explicit RecordingCodec(PixelArray picture) : picture_(std::move(picture)) {}

    bool Read(const std::string& /*fileName*/, PixelArray& picture) override {
        ++reads;
        picture = picture_;
        return !picture_.IsEmpty();
    }
    void Write(const PixelArray& picture, const std::string& fileName, std::string_view format) override {
        written.push_back({picture, fileName, std::string(format), quality_});
    }
    void FileRenamed(const std::string& /*from*/, const std::string& /*to*/) override {}
    void SetQuality(int quality) override { quality_ = quality; }

    struct Written {
        PixelArray picture;
        std::string fileName;
        std::string format;
        int quality;
    };
    int reads = 0;
    std::vector<Written> written;

  private:
    PixelArray picture_;
    int quality_ = 0;
};

TEST(FileConverter, WritesAJpegOfTheSizeThatKnowsItsReduction) {
    PixelArray source = Random({400, 300}, test::Alpha::Random);
    for (const double reduction : {1.0, 0.5}) { // a copy of a copy is reduced twice
        source.SetReduction(reduction);
        RecordingCodec codec(source);
        FileConverter converter(codec, std::make_shared<WorkingFileMemory>());
        converter.SetOutputSize(100, 75);
        converter.Convert("source", "target");
        ASSERT_EQ(codec.written.size(), 1U);
        const auto& written = codec.written.front();
        EXPECT_EQ(written.fileName, "target");
        EXPECT_EQ(written.format, "JPG");
        EXPECT_EQ(written.quality, 100);
        EXPECT_EQ(written.picture.Width(), 100);
        EXPECT_EQ(written.picture.Height(), 75);
        EXPECT_EQ(written.picture.Reduction(), reduction / 4);
        EXPECT_TRUE(written.picture.HasAlpha());
    }
}

TEST(FileConverter, DecodesNothingThatIsRemembered) {
    const TemporaryFolder folder;
    const auto memory = std::make_shared<WorkingFileMemory>();
    memory->Remember(folder.Make("1.jpg", "not even a picture"), Random({40, 40}));
    RecordingCodec codec(Random({77, 77}));
    FileConverter converter(codec, memory);
    converter.SetOutputSize(10, 10);
    converter.Convert(folder.Path("1.jpg"), "target");
    EXPECT_EQ(codec.reads, 0);
    ASSERT_EQ(codec.written.size(), 1U);
    EXPECT_EQ(codec.written.front().picture.Reduction(), 0.25)
        << "of the remembered picture, not of the file's";
}

TEST(FileConverter, SaysWhatIsWrongAndWritesNothing) {
    struct Case {
        const char* name;
        PixelArray source;
        std::int32_t width;
        std::int32_t height;
        ImagingFailure failure;
    };
    const auto cases = {
        Case{"no picture", PixelArray(), 10, 10, ImagingFailure::UnsupportedFormat},
        Case{"no size", Random({9, 9}), 0, 0, ImagingFailure::InvalidValue},
        Case{"no height", Random({9, 9}), 10, 0, ImagingFailure::InvalidValue},
        Case{"negative", Random({9, 9}), -1, 10, ImagingFailure::InvalidValue},
        Case{"too large", Random({9, 9}), 40000, 10, ImagingFailure::TooLarge},
    };
    for (const Case& c : cases) {
        RecordingCodec codec(c.source);
        FileConverter converter(codec, std::make_shared<WorkingFileMemory>());
        converter.SetOutputSize(c.width, c.height);
        try {
            converter.Convert("source", "target");
            ADD_FAILURE() << c.name;
        } catch (const ImagingError& error) {
            EXPECT_EQ(error.Kind(), c.failure) << c.name << ": " << error.what();
        }
        EXPECT_TRUE(codec.written.empty()) << c.name;
    }
}

TEST(FileConverter, OnTheDiskTheReductionSurvivesInWorkingFiles) {
    const TemporaryFolder folder;
    const auto memory = std::make_shared<WorkingFileMemory>();
    PictureFileCodec codec([](const std::string&) { return true; }, memory);
    codec.Write(Random({333, 100}), folder.Path("full.jpg"), "JPG");
    FileConverter converter(codec, memory);
    converter.SetOutputSize(250, 75);
    converter.Convert(folder.Path("full.jpg"), folder.Path("small.jpg"));
    PixelArray read;
    ASSERT_TRUE(codec.Read(folder.Path("small.jpg"), read));
    EXPECT_EQ(read.Width(), 250);
    EXPECT_EQ(read.Height(), 75);
    EXPECT_DOUBLE_EQ(read.Reduction(), 250.0 / 333);
}

} // namespace
} // namespace pictorel::test
