// JPEG files that are cut off, damaged or made to do harm: a picture or a clear error, never more.
#include "picture/ImagingError.h"
#include "picture/codecs/MadeExif.h"
#include "picture/codecs/MadeJpeg.h"
#include "picture/codecs/jpeg/JpegCodec.h"
#include "picture/codecs/jpeg/JpegSegments.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace pictorel::codecs {
namespace {

using testing::Difference;
using testing::JpegRecipe;
using testing::JpegSpace;
using testing::MadeJpeg;
using testing::MadePicture;

struct Result {
    std::optional<PixelArray> picture;
    ImagingFailure failure = ImagingFailure::InvalidValue;
};

Result Read(const ByteBuffer& file, bool workingFile = false) {
    try {
        return {ReadJpeg(file, {workingFile})};
    } catch (const ImagingError& error) {
        EXPECT_FALSE(std::string(error.what()).empty());
        return {{}, error.Kind()};
    }
}

ByteBuffer Head(const ByteBuffer& file, std::size_t bytes) {
    return {file.begin(), file.begin() + static_cast<std::ptrdiff_t>(bytes)};
}

bool IsWhite(const PixelArray& picture, int row) {
    return std::all_of(picture.Row(row), picture.Row(row) + picture.RowBytes(),
                       [](std::uint8_t component) { return component == 255; });
}

// The offset of the segment of the first frame header.
std::size_t FrameOffset(const ByteBuffer& file) {
    for (const JpegSegment& segment : JpegSegments(file)) {
        if (segment.marker >= 0xC0 && segment.marker <= 0xC2) {
            return segment.offset;
        }
    }
    return 0;
}

ByteBuffer WithSize(ByteBuffer file, int width, int height) {
    const std::size_t at = FrameOffset(file) + 5; // height, then width
    for (const int i : {0, 1}) {
        const int value = i == 0 ? height : width;
        file[at + static_cast<std::size_t>(i) * 2] = static_cast<std::uint8_t>(value >> 8);
        file[at + static_cast<std::size_t>(i) * 2 + 1] = static_cast<std::uint8_t>(value & 0xFF);
    }
    return file;
}

std::vector<JpegRecipe> Kinds() {
    const ByteBuffer exif = testing::ExifPayload({.orientation = 6});
    return {{},
            {.sampling = {2, 2}},
            {.restartRows = 1},
            {.restartInterval = 5},
            {.progressive = true},
            {.sampling = {2, 2}, .progressive = true},
            {.arithmetic = true},
            {.progressive = true, .arithmetic = true},
            {.space = JpegSpace::Grey, .restartRows = 1},
            {.space = JpegSpace::Ycck, .markers = {{jpeg::kApp1, exif}}}};
}

TEST(JpegDamage, TruncatedFilesGiveWhatWasDecodedOverWhite) {
    const PixelArray original = MadePicture(170, 330);
    for (const JpegRecipe& recipe :
         {JpegRecipe{}, JpegRecipe{.sampling = {2, 2}}, JpegRecipe{.restartRows = 1},
          JpegRecipe{.space = JpegSpace::Grey}, JpegRecipe{.arithmetic = true}}) {
        const ByteBuffer file = MadeJpeg(original, recipe);
        const PixelArray whole = ReadJpeg(file, {});
        const std::size_t scan = JpegSegments(file).back().end();
        EXPECT_EQ(Read(Head(file, scan)).failure, ImagingFailure::UnsupportedFormat);
        int lastGood = 0;
        for (const int percent : {20, 50, 80, 95}) {
            const Result cut =
                Read(Head(file, scan + (file.size() - scan) * static_cast<std::size_t>(percent) / 100));
            ASSERT_TRUE(cut.picture) << percent;
            int good = 330;
            while (good > 0 && IsWhite(*cut.picture, good - 1)) {
                --good;
            }
            EXPECT_GT(good, lastGood);
            EXPECT_LT(good, 330);
            // The last row of chroma blocks is mixed with what lies below it, and an arithmetic coder's last
            // row may be incomplete.
            EXPECT_EQ(Difference(*cut.picture, whole, good - 16), 0) << percent;
            EXPECT_EQ(cut.picture->Row(good - 1)[3], 255);
            lastGood = good;
        }
    }
}

TEST(JpegDamage, TruncatedProgressiveFilesLoseDetailOnly) {
    const PixelArray original = MadePicture(170, 330);
    const ByteBuffer file = MadeJpeg(original, {.progressive = true});
    const Result most = Read(Head(file, file.size() * 7 / 10));
    ASSERT_TRUE(most.picture);
    EXPECT_FALSE(IsWhite(*most.picture, 329));
    EXPECT_LT(Difference(*most.picture, original), 256);
    // In the first scan, rows are missing altogether.
    const std::size_t firstScan = JpegSegments(file).back().end();
    const Result little = Read(Head(file, firstScan + 600));
    ASSERT_TRUE(little.picture);
    EXPECT_TRUE(IsWhite(*little.picture, 329));
    EXPECT_FALSE(IsWhite(*little.picture, 0));
}

TEST(JpegDamage, BrokenLaterScanKeepsTheEarlierOnes) {
    const PixelArray original = MadePicture(170, 330);
    ByteBuffer file = MadeJpeg(original, {.progressive = true});
    std::vector<std::size_t> scans;
    for (std::size_t i = 0; i + 1 < file.size(); ++i) {
        if (file[i] == 0xFF && file[i + 1] == jpeg::kStartOfScan) {
            scans.push_back(i);
        }
    }
    ASSERT_GT(scans.size(), 6U);
    file[scans[4] + 3] = 77; // no scan header is so long
    const Result result = Read(file);
    ASSERT_TRUE(result.picture);
    EXPECT_FALSE(IsWhite(*result.picture, 329));
}

TEST(JpegDamage, EveryLengthAndManyBrokenBytes) {
    const PixelArray original = MadePicture(75, 61);
    for (const JpegRecipe& recipe : Kinds()) {
        const ByteBuffer file = MadeJpeg(original, recipe);
        const std::size_t scan = JpegSegments(file).back().end();
        for (std::size_t i = 0; i < file.size(); i += i < scan ? 1 : 11) {
            const Result cut = Read(Head(file, i));
            EXPECT_TRUE(cut.picture || cut.failure == ImagingFailure::UnsupportedFormat) << i;
            for (const int flip : {0xFF, 0x10, 0x01}) {
                ByteBuffer damaged = file;
                damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ flip);
                const Result result = Read(damaged);
                EXPECT_TRUE(result.picture || result.failure == ImagingFailure::UnsupportedFormat ||
                            result.failure == ImagingFailure::TooLarge)
                    << i;
            }
        }
    }
}

TEST(JpegDamage, BrokenWorkingFiles) {
    PixelArray original = MadePicture(75, 131);
    original.SetHasAlpha(true);
    const ByteBuffer file = WriteJpeg(original, {100, true});
    for (std::size_t i = 0; i < file.size(); i += 37) {
        ByteBuffer damaged = file;
        damaged[i] ^= 0x42;
        for (const ByteBuffer& broken : {damaged, Head(file, i)}) {
            const Result result = Read(broken, true);
            EXPECT_TRUE(result.picture || result.failure == ImagingFailure::UnsupportedFormat ||
                        result.failure == ImagingFailure::TooLarge)
                << i;
        }
    }
}

TEST(JpegDamage, AnnouncedSizesAreCheckedFirst) {
    const ByteBuffer file = MadeJpeg(MadePicture(75, 61), {});
    const ByteBuffer progressive = MadeJpeg(MadePicture(75, 61), {.progressive = true});
    EXPECT_EQ(Read(WithSize(file, 40000, 10)).failure, ImagingFailure::TooLarge);
    EXPECT_EQ(Read(WithSize(file, 10, 40000)).failure, ImagingFailure::TooLarge);
    EXPECT_EQ(Read(WithSize(file, 65500, 65500)).failure, ImagingFailure::TooLarge);
    EXPECT_EQ(Read(WithSize(file, 0, 61)).failure, ImagingFailure::UnsupportedFormat);
    EXPECT_EQ(Read(WithSize(file, 75, 0)).failure, ImagingFailure::UnsupportedFormat);
    // Within the limits, yet a few kilobytes cannot fill four gigabytes.
    EXPECT_EQ(Read(WithSize(file, 32767, 32766)).failure, ImagingFailure::UnsupportedFormat);
    EXPECT_EQ(Read(WithSize(progressive, 32767, 32766)).failure, ImagingFailure::UnsupportedFormat);
}

// Faults behind which there is a whole picture.
TEST(JpegDamage, FaultsThatCostNothing) {
    const ByteBuffer file = MadeJpeg(MadePicture(75, 61), {});
    const PixelArray expected = ReadJpeg(file, {});
    const auto with = [&file](std::size_t at, std::initializer_list<int> bytes) {
        ByteBuffer changed = file;
        changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(at), bytes.begin(), bytes.end());
        return changed;
    };
    const std::size_t frame = FrameOffset(file);
    const std::size_t scan = JpegSegments(file).back().offset;
    ByteBuffer heightBehind = WithSize(with(file.size() - 2, {0xFF, 0xDC, 0, 4, 0, 61}), 75, 0);
    ByteBuffer twoPictures = file;
    twoPictures.insert(twoPictures.end(), file.begin(), file.end());
    const struct {
        const char* name;
        ByteBuffer bytes;
    } cases[] = {
        {"two starts", with(0, {0xFF, 0xD8})},
        {"garbage behind the start", with(2, {0, 7, 0xFF, 0, 9})},
        {"garbage between segments", with(frame, {1, 2, 3, 0xFF, 0, 0xFF, 0xFF})},
        {"garbage before the scan", with(scan, {0, 0, 0})},
        {"an empty segment", with(frame, {0xFF, 0xE5, 0, 2})},
        {"a restart marker among the segments", with(frame, {0xFF, 0xD3})},
        {"restart markers announced, none there", with(frame, {0xFF, 0xDD, 0, 4, 0, 3})},
        {"the height behind the scan", heightBehind},
        {"no end", Head(file, file.size() - 2)},
        {"bytes behind the end", with(file.size(), {0, 0xFF, 0xD8, 0xFF, 0xC0, 1})},
        {"another picture behind the end", twoPictures},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(IsJpeg(c.bytes)) << c.name;
        const Result result = Read(c.bytes);
        ASSERT_TRUE(result.picture) << c.name;
        EXPECT_EQ(Difference(*result.picture, expected), 0) << c.name;
    }
}

TEST(JpegDamage, OtherKindsOfCompressionAreRefused) {
    const ByteBuffer file = MadeJpeg(MadePicture(75, 61), {});
    ByteBuffer deep = file;
    deep[FrameOffset(file) + 4] = 12; // bits a sample
    ByteBuffer lossless = file;
    lossless[FrameOffset(file) + 1] = 0xC3;
    for (const ByteBuffer& refused : {deep, lossless}) {
        EXPECT_EQ(Read(refused).failure, ImagingFailure::UnsupportedFormat);
    }
}

TEST(JpegDamage, EndlessScansAreRefusedSoon) {
    // The last scan of a progressive file, again and again.
    ByteBuffer file = MadeJpeg(MadePicture(800, 600), {.quality = 30, .progressive = true});
    file.resize(file.size() - 2);
    std::size_t last = file.size();
    while (!(file[last - 2] == 0xFF && file[last - 1] == jpeg::kStartOfScan)) {
        --last;
    }
    const ByteBuffer scan(file.begin() + static_cast<std::ptrdiff_t>(last - 2),
                          file.begin() + static_cast<std::ptrdiff_t>(std::min(last + 40, file.size())));
    for (int i = 0; i < 20000; ++i) {
        file.insert(file.end(), scan.begin(), scan.end());
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Read(file).failure, ImagingFailure::UnsupportedFormat);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

} // namespace
} // namespace pictorel::codecs
