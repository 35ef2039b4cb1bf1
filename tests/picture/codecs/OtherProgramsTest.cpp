// Files that we wrote, read by other people's programs where the machine has them: the pixels have to be the
// same.
#include "JudgeFolder.h"
#include "PictureSupport.h"

namespace pictorel::codecs::testing {
namespace {

class OtherPrograms : public ::testing::TestWithParam<std::string> {
  protected:
    // The picture under both names. Of odd width, since rows are padded.
    void WriteBoth(const std::string& extension, bool withAlpha) const {
        const PixelArray picture = MakePicture(61, 43, withAlpha);
        folder_.Save("judged." + extension, Write(extension, picture));
        folder_.Save(Right(extension), Write(Right(extension).substr(6), picture));
    }

    // What to compare with: a file of another format.
    static std::string Right(const std::string& extension) {
        return extension == "png" ? "right.tif" : "right.png";
    }

    int Run(const std::string& command) const { return folder_.Run(command); }

  private:
    JudgeFolder folder_;
};

bool HoldsAlpha(const std::string& extension) {
    return extension == "tga" || extension == "j2k" || extension == "png" || extension == "tif";
}

TEST_P(OtherPrograms, ImageMagickSeesTheSamePixels) {
    if (Run("command -v compare") != 0) {
        GTEST_SKIP() << "ImageMagick is not installed";
    }
    for (const bool withAlpha : {false, true}) {
        if (!withAlpha || HoldsAlpha(GetParam())) {
            WriteBoth(GetParam(), withAlpha);
            EXPECT_EQ(Run("compare -metric AE judged." + GetParam() + " " + Right(GetParam()) + " null:"), 0)
                << withAlpha;
        }
    }
}

TEST_P(OtherPrograms, PillowSeesTheSamePixels) {
    const std::string python = "/usr/bin/python3";
    if (Run(python + " -c 'import PIL'") != 0) {
        GTEST_SKIP() << "Pillow is not installed";
    }
    for (const bool withAlpha : {false, true}) {
        if (!withAlpha || HoldsAlpha(GetParam())) {
            WriteBoth(GetParam(), withAlpha);
            EXPECT_EQ(Run(python + " -c 'from PIL import Image; a = Image.open(\"judged." + GetParam() +
                          "\"); b = Image.open(\"" + Right(GetParam()) +
                          "\"); exit(a.mode != b.mode or a.tobytes() != "
                          "b.tobytes())'"),
                      0)
                << withAlpha;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, OtherPrograms,
                         ::testing::Values("tga", "pcx", "ras", "j2k", "bmp", "png", "tif"),
                         [](const auto& parameter) { return parameter.param; });

} // namespace
} // namespace pictorel::codecs::testing
