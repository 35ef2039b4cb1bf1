// TIFF files that are cut off, damaged or made to do harm: a picture or a clear error, never more.
#include "picture/codecs/MadeTiff.h"
#include "picture/codecs/PictureSupport.h"
#include "picture/codecs/tiff/Tiff.h"
#include "picture/codecs/tiff/TiffStructure.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>

namespace pictorel::codecs::testing {
namespace {

// A picture, or an error that says why.
::testing::AssertionResult IsDealtWith(ByteView file) {
    try {
        ReadTiff(file, {});
    } catch (const ImagingError& error) {
        if (std::string(error.what()).empty() || error.Kind() == ImagingFailure::OutOfMemory) {
            return ::testing::AssertionFailure() << "error \"" << error.what() << '"';
        }
    }
    return ::testing::AssertionSuccess();
}

ByteBuffer Head(const ByteBuffer& file, std::size_t bytes) {
    return {file.begin(), file.begin() + static_cast<std::ptrdiff_t>(bytes)};
}

// A little-endian file of one directory with these entries at offset 8: tag, type, count, value.
ByteBuffer FileOf(const std::vector<std::array<std::int64_t, 4>>& entries, std::int64_t next = 0) {
    Bytes bytes;
    bytes.Text("II*").U8({0}).Le32({8}).Le16({static_cast<std::int64_t>(entries.size())});
    for (const auto& [tag, type, count, value] : entries) {
        bytes.Le16({tag, type}).Le32({count, value});
    }
    return bytes.Le32({next}).Done();
}

std::vector<std::array<std::int64_t, 4>> Grey(std::int64_t width, std::int64_t height) {
    return {{256, 4, 1, width}, {257, 4, 1, height}, {258, 3, 1, 8},      {259, 3, 1, 1}, {262, 3, 1, 1},
            {273, 4, 1, 8},     {277, 3, 1, 1},      {278, 4, 1, height}, {279, 4, 1, 64}};
}

std::vector<TiffRecipe> Kinds() {
    std::vector<TiffRecipe> kinds;
    for (const int compression :
         {COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE,
          COMPRESSION_LZMA, COMPRESSION_ZSTD, COMPRESSION_WEBP, COMPRESSION_LERC, COMPRESSION_JPEG,
          COMPRESSION_PIXARLOG}) {
        if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(compression)) != 0) {
            kinds.push_back({.name = "rgb", .compression = compression});
            if (compression != COMPRESSION_PIXARLOG) { // which the library does not write in tiles
                kinds.push_back({.name = "tiles", .compression = compression, .tile = 16});
            }
        }
    }
    for (const int compression :
         {COMPRESSION_CCITTRLE, COMPRESSION_CCITTFAX3, COMPRESSION_CCITTFAX4, COMPRESSION_JBIG}) {
        if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(compression)) != 0) {
            kinds.push_back({.name = "bilevel",
                             .bits = 1,
                             .samples = 1,
                             .photometric = PHOTOMETRIC_MINISWHITE,
                             .compression = compression,
                             .rowsPerStrip = 29});
        }
    }
    kinds.push_back({.name = "planes", .bits = 16, .separate = true, .mode = "wb8"});
    kinds.push_back({.name = "ycbcr", .photometric = PHOTOMETRIC_YCBCR, .tags = [](TIFF* tiff) {
                         TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
                     }});
    kinds.push_back(
        {.name = "jpeg",
         .photometric = PHOTOMETRIC_YCBCR,
         .compression = COMPRESSION_JPEG,
         .rowsPerStrip = 16,
         .tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB); }});
    return kinds;
}

TEST(TiffDamage, EveryLengthAndManyBrokenBytes) {
    ::testing::internal::CaptureStderr();
    for (const TiffRecipe& recipe : Kinds()) {
        SCOPED_TRACE(recipe.name + std::to_string(recipe.compression));
        const ByteBuffer file = MadeTiff(recipe);
        for (std::size_t i = 0; i < file.size(); i += 1 + file.size() / 700) {
            EXPECT_TRUE(IsDealtWith(Head(file, i))) << i;
            for (const int flip : {0xFF, 0x10, 0x01}) {
                ByteBuffer damaged = file;
                damaged[i] = static_cast<std::uint8_t>(damaged[i] ^ flip);
                EXPECT_TRUE(IsDealtWith(damaged)) << i;
            }
        }
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
}

// The directory first, as in files made for reading from the start, and one strip.
TEST(TiffDamage, TruncatedStripsGiveTheirFirstRows) {
    for (const int compression :
         {COMPRESSION_NONE, COMPRESSION_PACKBITS, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE}) {
        SCOPED_TRACE(compression);
        const TiffRecipe recipe{
            .name = "one strip", .height = 200, .compression = compression, .rowsPerStrip = 200};
        // Evenly incompressible, so that rows take evenly many bytes.
        const auto noise = [](int x, int y, int sample) {
            const auto seed = static_cast<std::uint32_t>((y * 64 + x) * 4 + sample);
            return static_cast<int>((seed * 2654435761U ^ seed * 40503U * seed) >> 13 & 127);
        };
        ByteBuffer file = MadeTiff(recipe, noise);
        const PixelArray whole = Read(file);
        // The pixels stand before the directory: a copy of the strip at the end is what is cut off.
        const TiffStructure structure(file);
        const auto directory = structure.Directory(structure.FirstDirectory());
        const auto offset = structure.FirstNumber(*directory->Find(tifftags::kStripOffsets)).value();
        const auto bytes = structure.FirstNumber(*directory->Find(tifftags::kStripByteCounts)).value();
        const ByteBuffer strip(file.begin() + static_cast<std::ptrdiff_t>(offset),
                               file.begin() + static_cast<std::ptrdiff_t>(offset + bytes));
        const std::size_t entry =
            static_cast<std::size_t>(directory->Find(tifftags::kStripOffsets)->value.data() - file.data());
        const std::size_t end = file.size();
        for (std::size_t i = 0; i < 4; ++i) {
            file[entry + i] = static_cast<std::uint8_t>(end >> 8 * i);
        }
        file.insert(file.end(), strip.begin(), strip.end());
        int lastGood = 0;
        for (const std::size_t percent : {30U, 60U, 90U}) {
            const PixelArray cut = Read(Head(file, end + strip.size() * percent / 100));
            int good = 200;
            const std::vector<std::uint8_t> white(cut.RowBytes(), 255);
            while (good > 0 && std::equal(white.begin(), white.end(), cut.Row(good - 1))) {
                --good;
            }
            EXPECT_GT(good, lastGood);
            EXPECT_EQ(cut.PartShown(), good / 200.0);
            EXPECT_NEAR(good, 2.0 * static_cast<double>(percent), 30);
            for (int y = 0; y < good; ++y) {
                ASSERT_EQ(std::memcmp(whole.Row(y), cut.Row(y), cut.RowBytes()), 0) << y;
            }
            lastGood = good;
        }
    }
}

TEST(TiffDamage, ABrokenStripLeavesTheOthers) {
    ByteBuffer file = MadeTiff({.name = "strips", .compression = COMPRESSION_ADOBE_DEFLATE});
    const PixelArray whole = Read(file);
    const TiffStructure structure(file);
    const auto directory = structure.Directory(structure.FirstDirectory());
    const TiffEntry& offsets = *directory->Find(tifftags::kStripOffsets);
    const auto second =
        structure.Number(static_cast<std::uint64_t>(offsets.value.data() - file.data()) + 4, 4);
    file[second] = 0xFF; // no stream begins so
    const PixelArray rest = Read(file);
    EXPECT_EQ(rest.PartShown(), 1 - 8.0 / rest.Height());
    for (int y = 0; y < rest.Height(); ++y) {
        if (y / 8 == 1) {
            EXPECT_EQ(rest.Row(y)[0], 255);
            EXPECT_EQ(rest.Row(y)[5], 255);
        } else {
            EXPECT_EQ(std::memcmp(rest.Row(y), whole.Row(y), rest.RowBytes()), 0) << y;
        }
    }
}

TEST(TiffDamage, ClaimsAreCheckedBeforeMemoryIsTaken) {
    EXPECT_EQ(SpelledFile(FileOf(Grey(40000, 40000))), kTooLarge);
    EXPECT_EQ(SpelledFile(FileOf(Grey(4000000000, 4000000000))), kTooLarge);
    EXPECT_EQ(SpelledFile(FileOf(Grey(32767, 32766))), kUnsupported);
    EXPECT_EQ(SpelledFile(FileOf(Grey(0, 10))), kUnsupported);
    struct Row {
        const char* name;
        std::vector<std::array<std::int64_t, 4>> entries;
    };
    const auto with = [](std::vector<std::array<std::int64_t, 4>> entries,
                         const std::vector<std::array<std::int64_t, 4>>& more) {
        for (const auto& entry : more) {
            std::erase_if(entries, [&](const auto& old) { return old[0] == entry[0]; });
            entries.push_back(entry);
        }
        std::sort(entries.begin(), entries.end());
        return entries;
    };
    for (const auto& [name, entries] :
         {Row{"a huge tile",
              with(
                  Grey(16, 16),
                  {{322, 4, 1, 32768}, {323, 4, 1, 32768}, {324, 4, 1, 8}, {325, 4, 1, 64}, {259, 3, 1, 8}})},
          Row{"tiles of a pixel",
              with(Grey(30000, 30000),
                   {{322, 4, 1, 1}, {323, 4, 1, 1}, {324, 4, 1, 8}, {325, 4, 1, 64}, {259, 3, 1, 8}})},
          Row{"samples without end", with(Grey(1000, 1000), {{277, 3, 1, 65535}, {259, 3, 1, 5}})},
          Row{"a blank fax of gigabytes", with(Grey(32767, 32766), {{258, 3, 1, 1}, {259, 3, 1, 4}})},
          Row{"no strips", with(Grey(1000, 1000), {{273, 4, 0, 0}, {279, 4, 0, 0}})},
          Row{"unknown compression", with(Grey(10, 10), {{259, 3, 1, 777}})},
          Row{"unknown colour", with(Grey(10, 10), {{262, 3, 1, 777}})}}) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(SpelledFile(FileOf(entries)), kUnsupported) << name;
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << name;
    }
}

TEST(TiffDamage, DirectoriesWithoutEnd) {
    // A reduced copy whose next directory is itself: shown, since there is no other.
    auto entries = Grey(4, 4);
    entries.insert(entries.begin(), {254, 4, 1, 1});
    EXPECT_NE(SpelledFile(FileOf(entries, 8)), kUnsupported);
    // No directory at all, or one without entries.
    EXPECT_EQ(SpelledFile(FileOf({}, 8)), kUnsupported);
    // More unknown tags than anyone has are left aside.
    std::vector<std::array<std::int64_t, 4>> many = Grey(4, 4);
    for (int tag = 1000; tag < 60000; ++tag) {
        many.push_back({tag, 1, 500000, 8});
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Read(FileOf(many)).Width(), 4);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

// Strips of one row by the thousands that all stand in the same place are work bounded by the picture.
TEST(TiffDamage, ManyStripsInOnePlace) {
    constexpr std::int64_t kRows = 32767;
    auto entries = Grey(512, kRows);
    constexpr std::int64_t kTable = 8 + 2 + 9 * 12 + 4;
    for (auto& entry : entries) {
        if (entry[0] == 273 || entry[0] == 279) {
            entry = {entry[0], 4, kRows, entry[0] == 273 ? kTable : kTable + 4 * kRows};
        }
        if (entry[0] == 278) {
            entry[3] = 1;
        }
    }
    ByteBuffer file = FileOf(entries);
    const Bytes tables = [] {
        Bytes bytes;
        for (const std::int64_t value : {std::int64_t{8}, std::int64_t{512}}) {
            for (std::int64_t i = 0; i < kRows; ++i) {
                bytes.Le32({value});
            }
        }
        return bytes;
    }();
    file.insert(file.end(), tables.Done().begin(), tables.Done().end());
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Read(file).Height(), kRows);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

// Files without the counts of their strips' bytes, and with counts of 0.
TEST(TiffDamage, MissingByteCounts) {
    for (const int compression : {COMPRESSION_NONE, COMPRESSION_LZW}) {
        const ByteBuffer file = MadeTiff({.name = "counts", .compression = compression});
        const PixelArray whole = Read(file);
        const TiffStructure structure(file);
        const TiffEntry counts =
            *structure.Directory(structure.FirstDirectory())->Find(tifftags::kStripByteCounts);
        const auto at = static_cast<std::size_t>(counts.value.data() - file.data());
        ByteBuffer zeros = file;
        std::fill_n(zeros.begin() + static_cast<std::ptrdiff_t>(at), counts.value.size(), std::uint8_t{0});
        EXPECT_TRUE(SamePixels(Read(zeros), whole)) << compression;
    }
}

// Slips that cost the library the whole file.
TEST(TiffDamage, SlipsOfWriters) {
    using Entries = std::vector<std::array<std::int64_t, 4>>;
    constexpr std::int64_t kData = 8 + 2 + 9 * 12 + 4; // behind nine entries
    constexpr std::int64_t kBoth = kData | (kData + 4) << 16;
    // 4 x 2 greys in two strips.
    const Entries sound{{256, 4, 1, 4}, {257, 4, 1, 2}, {258, 3, 1, 8},
                        {259, 3, 1, 1}, {262, 3, 1, 1}, {273, 3, 2, kBoth},
                        {277, 3, 1, 1}, {278, 4, 1, 1}, {279, 3, 2, 4 | 4 << 16}};
    const struct {
        const char* name;
        std::array<std::int64_t, 4> entry; // in place of the one with its tag
        std::int64_t replaced = 0;         // or of another
    } cases[] = {
        {"nothing", sound[0]},
        {"signed width", {256, 9, 1, 4}},
        {"no compression", {259, 3, 1, 0}},
        {"no rows a strip", {278, 4, 1, 0}},
        {"rows a strip missing", {1000, 3, 1, 0}, 278},
        {"byte counts missing", {1000, 3, 1, 0}, 279},
        {"byte count of one strip", {279, 4, 1, 4}},
        {"byte counts of 0", {279, 3, 2, 0}},
        {"bits of too many samples", {258, 3, 2, 8 | 8 << 16}},
        {"samples a pixel missing", {1000, 3, 1, 0}, 277},
        {"no order of planes", {284, 3, 1, 0}, 262},
        {"unknown kind of extra sample", {338, 3, 1, 77}, 262},
        {"format of another sample", {339, 3, 2, 1 | 2 << 16}, 262},
    };
    for (const auto& c : cases) {
        Entries entries = sound;
        std::erase_if(entries,
                      [&](const auto& e) { return e[0] == (c.replaced != 0 ? c.replaced : c.entry[0]); });
        entries.push_back(c.entry);
        std::sort(entries.begin(), entries.end());
        ByteBuffer file = FileOf(entries);
        for (int i = 0; i < 8; ++i) {
            file.push_back(static_cast<std::uint8_t>(16 + i));
        }
        EXPECT_EQ(SpelledFile(file), "101010 111111 121212 131313/141414 151515 161616 171717") << c.name;
    }
}

TEST(TiffDamage, WhatIsNoTiff) {
    EXPECT_FALSE(IsTiff({}));
    EXPECT_FALSE(IsTiff(Bytes().Text("II*").Done()));
    EXPECT_TRUE(IsTiff(Bytes().Text("MM").U8({0, 42}).Done()));
    EXPECT_TRUE(IsTiff(Bytes().Text("II+").U8({0}).Done()));
    EXPECT_EQ(SpelledFile({}), kUnsupported);
    EXPECT_THROW(ReadTiff({}, {}), ImagingError);
    EXPECT_EQ(SpelledFile(Bytes().Text("II*").U8({0}).Done()), kUnsupported);
    EXPECT_EQ(SpelledFile(Bytes().Text("MM").U8({0, 43, 0, 8, 0, 0}).Zeros(8).Done()), kUnsupported);
}

} // namespace
} // namespace pictorel::codecs::testing
