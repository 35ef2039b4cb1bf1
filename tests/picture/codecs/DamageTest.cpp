// Every format: pictures come through a file, and no damage to a file does worse than an error.
#include "PictureSupport.h"
#include "picture/codecs/Exif.h"

#include <sys/resource.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

struct Format {
    std::string_view extension;
    bool isExact; // pixels come back as they were
    bool holdsAlpha;
};
constexpr Format kFormats[] = {
    {"JPG", false, false}, {"PNG", true, true},  {"GIF", false, false},
    {"TIF", true, true},   {"BMP", true, false}, {"J2K", true, true},
    {"RAS", true, false},  {"PCX", true, false}, {"TGA", true, true},
};

// Those that are read and not written, whose files come from the corpus.
constexpr std::string_view kReadOnly[] = {"WEBP", "HEIF", "JXL"};

TEST(Formats, AllStandInTheTable) {
    for (const Codec& codec : Codecs()) {
        const bool isWritten = std::any_of(std::begin(kFormats), std::end(kFormats),
                                           [&](const Format& f) { return f.extension == codec.extension; });
        const bool isOnlyRead =
            std::find(std::begin(kReadOnly), std::end(kReadOnly), codec.extension) != std::end(kReadOnly);
        EXPECT_NE(isWritten, isOnlyRead) << codec.name;
        EXPECT_EQ(FindCodecByExtension(codec.extension) != nullptr, isWritten) << codec.name;
    }
}

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
                const PixelArray again = Read(Write(format.extension, picture));
                if (format.extension == "JPG") { // whose losses have tests of their own
                    EXPECT_TRUE(again.Width() == shape.width && again.Height() == shape.height);
                } else {
                    EXPECT_TRUE(SamePixels(picture, again))
                        << format.extension << ' ' << shape.width << ' ' << shape.height;
                }
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

// Of its own size, so that reading beyond the end is seen.
ByteBuffer Beginning(const ByteBuffer& file, std::size_t length) {
    return {file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)};
}

TEST(Formats, SurviveBeingCutShort) {
    for (const Format& format : kFormats) {
        const ByteBuffer file = Write(format.extension, MakePicture(61, 43, format.holdsAlpha));
        const std::size_t step = std::max<std::size_t>(1, file.size() / 400);
        for (std::size_t length = 0; length < file.size(); length += length < 300 ? 1 : step) {
            ExpectSurvives(Beginning(file, length));
        }
    }
}

// The part shown grows with what the file holds, and nothing true is less than a row.
TEST(Formats, TellHowMuchOfACutFileIsShown) {
    for (const Format& format : kFormats) {
        if (format.extension == "TIF") {
            continue; // what is cut off is what says where the pixels are
        }
        const ByteBuffer file = Write(format.extension, MakePicture(300, 200, false, 200));
        EXPECT_EQ(Read(file).PartShown(), 1) << format.extension;
        double before = 0;
        for (const double share : {0.2, 0.5, 0.8}) {
            const auto length = static_cast<std::size_t>(share * static_cast<double>(file.size()));
            const double part = Read(Beginning(file, length)).PartShown();
            EXPECT_NEAR(part, share, 0.15) << format.extension;
            EXPECT_GT(part, before) << format.extension;
            before = part;
        }
    }
}

TEST(Formats, KeepThePartShownThroughTurning) {
    PixelArray picture = MakePicture(30, 20);
    picture.SetPartShown(0.5);
    EXPECT_EQ(ApplyOrientation(picture, 6).PartShown(), 0.5);
    EXPECT_EQ(PixelArray::Like(picture).PartShown(), 1) << "what operations make is whole";
}

class Damager {
  public:
    // Some bytes of the file changed. Headers are hit oftenest; some formats have theirs at the end.
    ByteBuffer Damaged(const ByteBuffer& file, std::size_t round) {
        ByteBuffer damaged = file;
        const std::size_t reach =
            round % 3 == 0 ? damaged.size() : std::min<std::size_t>(damaged.size(), 200);
        for (std::size_t hits = 0; hits <= round % 4; ++hits) {
            const std::size_t at = Next() % reach;
            damaged[round % 3 == 1 ? damaged.size() - 1 - at : at] = static_cast<std::uint8_t>(Next());
        }
        return damaged;
    }
    std::size_t Next() { return (random_ = random_ * 1664525 + 1013904223) >> 8; }

  private:
    std::uint32_t random_ = 99;
};

TEST(Formats, SurviveDamagedBytes) {
    Damager damager;
    for (const Format& format : kFormats) {
        const ByteBuffer file = Write(format.extension, MakePicture(61, 43, format.holdsAlpha));
        for (std::size_t i = 0; i < 1200; ++i) {
            ExpectSurvives(damager.Damaged(file, i));
        }
    }
}

// The files of the format that the fuzzers start from and those that once broke a reader.
std::vector<ByteBuffer> CorpusOf(std::string_view extension) {
    std::string folder(extension);
    std::transform(folder.begin(), folder.end(), folder.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::vector<std::filesystem::path> paths;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(PICTOREL_CORPUS) / folder)) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end()); // so that each run does the same
    std::vector<ByteBuffer> files;
    for (const auto& path : paths) {
        std::ifstream in(path, std::ios::binary);
        files.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return files;
}

// Files of every kind, cut and damaged. What they cost in memory is bounded by what files of a few kilobytes
// may honestly be.
TEST(Formats, SurviveDamageToEveryKindOfFile) {
    Damager damager;
    std::vector<std::string_view> extensions(std::begin(kReadOnly), std::end(kReadOnly));
    for (const Format& format : kFormats) {
        extensions.push_back(format.extension);
    }
    for (const std::string_view extension : extensions) {
        const auto files = CorpusOf(extension);
        ASSERT_FALSE(files.empty()) << extension;
        for (const ByteBuffer& file : files) {
            for (std::size_t i = 0; i < 25 && !file.empty(); ++i) {
                ExpectSurvives(Beginning(file, damager.Next() % file.size()));
                ExpectSurvives(damager.Damaged(file, i));
            }
        }
    }
    constexpr long kMostKilobytes = 1200L << 10;
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, kMostKilobytes);
}

TEST(Formats, AreKnownByContentAlone) {
    EXPECT_EQ(FindCodecByContent({}), nullptr);
    for (const Format& format : kFormats) {
        const ByteBuffer file = Write(format.extension, MakePicture(5, 5));
        ASSERT_NE(FindCodecByContent(file), nullptr);
        EXPECT_EQ(FindCodecByContent(file)->extension, format.extension);
        for (std::size_t length = 0; length < 4; ++length) {
            EXPECT_EQ(FindCodecByContent(Beginning(file, length)), nullptr);
        }
    }
    EXPECT_EQ(FindCodecByContent(Bytes().Text("BM, which begins many a letter too").Done()), nullptr);
}

} // namespace
} // namespace pictorel::codecs::testing
