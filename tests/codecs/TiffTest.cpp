// TIFF: samples of every size and kind, in strips, tiles and planes, and files that are not quite right.
#include "MadeProfiles.h"
#include "PictureSupport.h"
#include "imaging/codecs/TiffFile.h"

#include <functional>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

// A file as libtiff writes it; a test names only what matters to it.
struct Recipe {
    std::uint32_t width = 2;
    std::uint32_t height = 1;
    int bits = 8;
    int samples = 1;
    int photometric = PHOTOMETRIC_MINISBLACK;
    ByteBuffer data{}; // rows, or planes of rows, as they stand uncompressed
    int format = SAMPLEFORMAT_UINT;
    bool planar = false;
    int compression = COMPRESSION_NONE;
    std::vector<std::uint16_t> extra{};
    std::function<void(TIFF*)> tags = [](TIFF*) {};
    const char* mode = "w";
};

void AddDirectory(TIFF* tiff, const Recipe& recipe) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, recipe.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, recipe.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, recipe.bits);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, recipe.samples);
    TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, recipe.format);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, recipe.photometric);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, recipe.planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, recipe.compression);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, 2);
    if (!recipe.extra.empty()) {
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, static_cast<int>(recipe.extra.size()), recipe.extra.data());
    }
    recipe.tags(tiff);
    ByteBuffer data = recipe.data;
    const auto rowBytes = static_cast<std::size_t>(TIFFScanlineSize(tiff));
    std::size_t at = 0;
    for (int plane = 0; plane < (recipe.planar ? recipe.samples : 1); ++plane) {
        for (std::uint32_t y = 0; y < recipe.height; ++y, at += rowBytes) {
            data.resize(std::max(data.size(), at + rowBytes));
            TIFFWriteScanline(tiff, data.data() + at, y, static_cast<std::uint16_t>(plane));
        }
    }
    TIFFWriteDirectory(tiff);
}

ByteBuffer MakeTiff(const std::vector<Recipe>& directories) {
    TiffMemory memory;
    memory.isWriting = true;
    {
        const TiffHandle tiff = OpenTiff(memory, directories.front().mode);
        for (const Recipe& recipe : directories) {
            AddDirectory(tiff.get(), recipe);
        }
    }
    return memory.written;
}

struct Case {
    const char* name;
    Recipe recipe;
    std::string expected;
};

void ExpectAll(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(SpelledFile(MakeTiff({c.recipe})), c.expected) << c.name;
    }
}

ByteBuffer Words(std::initializer_list<std::int64_t> values) {
    return Bytes().Le16(values).Done();
}

template <class Number>
ByteBuffer Numbers(std::initializer_list<Number> values) {
    ByteBuffer bytes(values.size() * sizeof(Number));
    std::memcpy(bytes.data(), values.begin(), bytes.size());
    return bytes;
}

TEST(Tiff, ReadsSamplesOfEverySizeAndKind) {
    ExpectAll({
        {"1 bit", {.width = 3, .bits = 1, .data = {0x40}}, "000000 FFFFFF 000000"},
        {"1 bit, 0 is white",
         {.width = 3, .bits = 1, .photometric = PHOTOMETRIC_MINISWHITE, .data = {0x40}},
         "FFFFFF 000000 FFFFFF"},
        {"2 bits", {.bits = 2, .data = {0x60}}, "555555 AAAAAA"},
        {"3 bits", {.bits = 3, .data = {0x3C}}, "242424 FFFFFF"},
        {"4 bits", {.bits = 4, .data = {0x2F}}, "222222 FFFFFF"},
        {"8 bits", {.data = {7, 200}}, "070707 C8C8C8"},
        {"8 bits signed", {.data = {0x80, 0x7F}, .format = SAMPLEFORMAT_INT}, "000000 FFFFFF"},
        {"10 bits across bytes", {.bits = 10, .data = {0x80, 0x3F, 0xF0}}, "808080 FFFFFF"},
        {"12 bits", {.bits = 12, .data = {0x80, 0x0F, 0xFF}}, "808080 FFFFFF"},
        {"16 bits, rounded", {.bits = 16, .data = Words({0x7FFF, 0x0081})}, "7F7F7F 010101"},
        {"16 bits signed",
         {.bits = 16, .data = Words({0x8000, 0x7FFF}), .format = SAMPLEFORMAT_INT},
         "000000 FFFFFF"},
        {"24 bits", {.bits = 24, .data = {0, 0, 0x80, 0xFF, 0xFF, 0xFF}}, "808080 FFFFFF"},
        {"32 bits", {.bits = 32, .data = Numbers<std::uint32_t>({0x80000000, 0xFFFFFFFF})}, "808080 FFFFFF"},
        {"float",
         {.width = 4, .bits = 32, .data = Numbers({0.5F, 1.0F, 7.0F, -1.0F}), .format = SAMPLEFORMAT_IEEEFP},
         "808080 FFFFFF FFFFFF 000000"},
        {"float that is no number",
         {.bits = 32,
          .data = Numbers<std::uint32_t>({0x7FC00000, 0x7F800000}),
          .format = SAMPLEFORMAT_IEEEFP},
         "000000 FFFFFF"},
        {"half float",
         {.bits = 16, .data = Words({0x3800, 0x3C00}), .format = SAMPLEFORMAT_IEEEFP},
         "808080 FFFFFF"},
        {"double with its range told",
         {.bits = 64,
          .data = Numbers({15.0, 20.0}),
          .format = SAMPLEFORMAT_IEEEFP,
          .tags =
              [](TIFF* t) {
                  TIFFSetField(t, TIFFTAG_SMINSAMPLEVALUE, 10.0);
                  TIFFSetField(t, TIFFTAG_SMAXSAMPLEVALUE, 20.0);
              }},
         "808080 FFFFFF"},
        {"the other byte order",
         {.bits = 16, .data = Words({0x7FFF, 0x0081}), .mode = "wb"},
         "7F7F7F 010101"},
        {"64-bit offsets", {.data = {7, 200}, .mode = "w8"}, "070707 C8C8C8"},
        {"lowest bit first",
         {.width = 3,
          .bits = 1,
          .data = {0x40},
          .tags = [](TIFF* t) { TIFFSetField(t, TIFFTAG_FILLORDER, FILLORDER_LSB2MSB); }},
         "000000 FFFFFF 000000"},
    });
}

void SetColours(TIFF* tiff, bool old) {
    std::uint16_t red[4] = {65535, 0, 0, 257};
    std::uint16_t green[4] = {0, 65535, 0, 514};
    std::uint16_t blue[4] = {0, 0, 65535, 771};
    for (int i = 0; old && i < 4; ++i) {
        red[i] >>= 8, green[i] >>= 8, blue[i] >>= 8;
    }
    TIFFSetField(tiff, TIFFTAG_COLORMAP, red, green, blue);
}

TEST(Tiff, ReadsEveryKindOfColours) {
    ExpectAll({
        {"palette",
         {.width = 4,
          .bits = 2,
          .photometric = PHOTOMETRIC_PALETTE,
          .data = {0x1B},
          .tags = [](TIFF* t) { SetColours(t, false); }},
         "FF0000 00FF00 0000FF 010203"},
        {"palette of 8-bit values",
         {.width = 4,
          .bits = 2,
          .photometric = PHOTOMETRIC_PALETTE,
          .data = {0x1B},
          .tags = [](TIFF* t) { SetColours(t, true); }},
         "FF0000 00FF00 0000FF 010203"},
        {"RGB", {.samples = 3, .photometric = PHOTOMETRIC_RGB, .data = {1, 2, 3, 4, 5, 6}}, "010203 040506"},
        {"RGB in planes",
         {.height = 3,
          .samples = 3,
          .photometric = PHOTOMETRIC_RGB,
          .data = {1, 2, 3, 4, 5, 6, 11, 12, 13, 14, 15, 16, 21, 22, 23, 24, 25, 26},
          .planar = true},
         "010B15 020C16/030D17 040E18/050F19 06101A"},
        {"RGB 16 in planes",
         {.width = 1,
          .bits = 16,
          .samples = 3,
          .photometric = PHOTOMETRIC_RGB,
          .data = Words({0x0101, 0x0202, 0x0303}),
          .planar = true},
         "010203"},
        {"RGB 16",
         {.width = 1,
          .bits = 16,
          .samples = 3,
          .photometric = PHOTOMETRIC_RGB,
          .data = Words({0x0101, 0x0202, 0xFFFF})},
         "0102FF"},
        {"CMYK",
         {.samples = 4, .photometric = PHOTOMETRIC_SEPARATED, .data = {255, 0, 0, 0, 0, 0, 0, 255}},
         "00FFFF 000000"},
        {"CMYK 16",
         {.width = 1,
          .bits = 16,
          .samples = 4,
          .photometric = PHOTOMETRIC_SEPARATED,
          .data = Words({0, 0xFFFF, 0, 0})},
         "FF00FF"},
        {"L*a*b*",
         {.samples = 3, .photometric = PHOTOMETRIC_CIELAB, .data = {255, 0, 0, 0, 0, 0}},
         "FFFFFF 000000"},
        {"L*a*b* as profiles have it",
         {.samples = 3, .photometric = PHOTOMETRIC_ICCLAB, .data = {255, 128, 128, 0, 128, 128}},
         "FFFFFF 000000"},
        {"L*a*b* 16",
         {.bits = 16,
          .samples = 3,
          .photometric = PHOTOMETRIC_CIELAB,
          .data = Words({0xFFFF, 0, 0, 0, 0, 0})},
         "FFFFFF 000000"},
        {"YCbCr",
         {.samples = 3,
          .photometric = PHOTOMETRIC_YCBCR,
          .data = {255, 128, 128, 0, 128, 128},
          .tags = [](TIFF* t) { TIFFSetField(t, TIFFTAG_YCBCRSUBSAMPLING, 1, 1); }},
         "FFFFFF 000000"},
        {"unassociated alpha",
         {.width = 1,
          .samples = 4,
          .photometric = PHOTOMETRIC_RGB,
          .data = {100, 50, 25, 128},
          .extra = {EXTRASAMPLE_UNASSALPHA}},
         "64321980"},
        {"associated alpha",
         {.samples = 4,
          .photometric = PHOTOMETRIC_RGB,
          .data = {100, 50, 25, 128, 0, 0, 0, 0},
          .extra = {EXTRASAMPLE_ASSOCALPHA}},
         "C7643280 00000000"},
        {"grey and alpha 16",
         {.width = 1,
          .bits = 16,
          .samples = 2,
          .data = Words({0x4040, 0x8080}),
          .extra = {EXTRASAMPLE_UNASSALPHA}},
         "40404080"},
        {"alpha behind a selection",
         {.width = 1,
          .samples = 5,
          .photometric = PHOTOMETRIC_RGB,
          .data = {1, 2, 3, 77, 128},
          .extra = {EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_UNASSALPHA}},
         "01020380"},
        {"a selection is no alpha",
         {.width = 1,
          .samples = 4,
          .photometric = PHOTOMETRIC_RGB,
          .data = {1, 2, 3, 0},
          .extra = {EXTRASAMPLE_UNSPECIFIED}},
         "010203"},
        {"a fourth sample that nothing names",
         {.width = 1, .samples = 4, .photometric = PHOTOMETRIC_RGB, .data = {1, 2, 3, 4}},
         "01020304"},
        {"a fourth sample that nothing names or sets",
         {.width = 1, .samples = 4, .photometric = PHOTOMETRIC_RGB, .data = {1, 2, 3, 0}},
         "010203"},
    });
}

TEST(Tiff, TurnsThePictureUpright) {
    const char* const expected[] = {"010101 020202/030303 040404", "020202 010101/040404 030303",
                                    "040404 030303/020202 010101", "030303 040404/010101 020202",
                                    "010101 030303/020202 040404", "030303 010101/040404 020202",
                                    "040404 020202/030303 010101", "020202 040404/010101 030303"};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const Recipe recipe{.height = 2, .data = {1, 2, 3, 4}, .tags = [=](TIFF* t) {
                                TIFFSetField(t, TIFFTAG_ORIENTATION, orientation);
                                TIFFSetField(t, TIFFTAG_RESOLUTIONUNIT, RESUNIT_CENTIMETER);
                                TIFFSetField(t, TIFFTAG_XRESOLUTION, 100.0);
                                TIFFSetField(t, TIFFTAG_YRESOLUTION, 50.0);
                            }};
        const PixelArray picture = Read(MakeTiff({recipe}));
        EXPECT_EQ(Spelled(picture), expected[orientation - 1]) << orientation;
        EXPECT_EQ(picture.Details().dotsPerInchX, orientation < 5 ? 254 : 127) << orientation;
    }
}

// A picture of 70 x 50 greys or colours through each packer, in strips and in tiles.
TEST(Tiff, ReadsEveryCompression) {
    struct Packer {
        int compression;
        int bits;
        int samples;
    };
    const std::vector<Packer> packers{{COMPRESSION_LZW, 8, 3},      {COMPRESSION_PACKBITS, 8, 3},
                                      {COMPRESSION_DEFLATE, 8, 3},  {COMPRESSION_ADOBE_DEFLATE, 16, 3},
                                      {COMPRESSION_LZMA, 8, 3},     {COMPRESSION_ZSTD, 8, 3},
                                      {COMPRESSION_CCITTRLE, 1, 1}, {COMPRESSION_CCITTFAX3, 1, 1},
                                      {COMPRESSION_CCITTFAX4, 1, 1}};
    for (const Packer& packer : packers) {
        Recipe recipe{.width = 70,
                      .height = 50,
                      .bits = packer.bits,
                      .samples = packer.samples,
                      .photometric = packer.samples == 3 ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK};
        for (int i = 0; i < 70 * 50 * packer.samples * packer.bits / 8; ++i) {
            recipe.data.push_back(static_cast<std::uint8_t>(i / 7 * 3));
        }
        const std::string plain = SpelledFile(MakeTiff({recipe}));
        ASSERT_NE(plain, kUnsupported);
        recipe.compression = packer.compression;
        EXPECT_EQ(SpelledFile(MakeTiff({recipe})), plain) << packer.compression;
    }
    Recipe jpeg{.width = 64,
                .height = 48,
                .samples = 3,
                .photometric = PHOTOMETRIC_YCBCR,
                .data = ByteBuffer(64 * 48 * 3, 200),
                .compression = COMPRESSION_JPEG,
                .tags = [](TIFF* t) {
                    TIFFSetField(t, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
                    TIFFSetField(t, TIFFTAG_ROWSPERSTRIP, 16);
                }};
    EXPECT_EQ(Spelled(Read(MakeTiff({jpeg}))).substr(0, 13), "C8C8C8 C8C8C8");
}

TEST(Tiff, ReadsTiles) {
    const PixelArray picture = MakePicture(70, 50);
    for (const bool planar : {false, true}) {
        TiffMemory memory;
        memory.isWriting = true;
        {
            const TiffHandle tiff = OpenTiff(memory, "w");
            TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, 70);
            TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, 50);
            TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, 8);
            TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, 3);
            TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
            TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG,
                         planar ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
            TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_LZW);
            TIFFSetField(tiff.get(), TIFFTAG_TILEWIDTH, 32);
            TIFFSetField(tiff.get(), TIFFTAG_TILELENGTH, 16);
            const int planes = planar ? 3 : 1;
            for (int plane = 0; plane < planes; ++plane) {
                for (int top = 0; top < 50; top += 16) {
                    for (int left = 0; left < 70; left += 32) {
                        ByteBuffer tile;
                        for (int i = 0; i < 32 * 16 * 3 / planes; ++i) {
                            const int x = std::min(left + i * planes / 3 % 32, 69);
                            const int y = std::min(top + i * planes / 3 / 32, 49);
                            tile.push_back(picture.Row(y)[4 * x + 2 - (planar ? plane : i % 3)]);
                        }
                        TIFFWriteTile(tiff.get(), tile.data(), static_cast<std::uint32_t>(left),
                                      static_cast<std::uint32_t>(top), 0, static_cast<std::uint16_t>(plane));
                    }
                }
            }
        }
        EXPECT_TRUE(SamePixels(Read(memory.written), picture)) << planar;
    }
}

TEST(Tiff, TakesTheFirstPictureOfFullResolution) {
    const Recipe thumbnail{.width = 1, .data = {9}, .tags = [](TIFF* t) {
                               TIFFSetField(t, TIFFTAG_SUBFILETYPE, FILETYPE_REDUCEDIMAGE);
                           }};
    const Recipe page{.data = {7, 200}};
    const Recipe other{.data = {1, 1}};
    EXPECT_EQ(SpelledFile(MakeTiff({thumbnail, page, other})), "070707 C8C8C8");
    EXPECT_EQ(SpelledFile(MakeTiff({page, thumbnail})), "070707 C8C8C8");
    EXPECT_EQ(SpelledFile(MakeTiff({thumbnail})), "090909");
}

TEST(Tiff, ConvertsOtherColourSpacesToSrgb) {
    const auto withProfile = [](const ByteBuffer& icc, int bits) {
        return Recipe{
            .width = 1,
            .bits = bits,
            .samples = 3,
            .photometric = PHOTOMETRIC_RGB,
            .data = bits == 8 ? ByteBuffer{120, 140, 100} : Words({120 * 257, 140 * 257, 100 * 257}),
            .tags = [icc](TIFF* t) {
                TIFFSetField(t, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(icc.size()), icc.data());
            }};
    };
    const std::string converted = SpelledFile(MakeTiff({withProfile(WideRgbProfile(), 8)}));
    EXPECT_NE(converted, "788C64");
    EXPECT_EQ(SpelledFile(MakeTiff({withProfile(WideRgbProfile(), 16)})), converted);
    EXPECT_EQ(SpelledFile(MakeTiff({withProfile(SrgbProfile(), 8)})), "788C64");
    EXPECT_FALSE(Read(MakeTiff({withProfile(WideRgbProfile(), 8)})).Details().icc.empty());
}

TEST(Tiff, KeepsDetailsThroughAFile) {
    PixelArray picture = MakePicture(50, 40, true);
    Metadata details;
    details.icc = SrgbProfile();
    details.dotsPerInchX = 300;
    details.dotsPerInchY = 150;
    picture.SetDetails(details);
    const PixelArray again = Read(Write("tif", picture));
    EXPECT_TRUE(SamePixels(picture, again));
    EXPECT_EQ(again.Details(), details);
}

// An entry of a directory written by hand.
Bytes& Entry(Bytes& bytes, int tag, int type, std::int64_t count, std::int64_t value) {
    return bytes.Le16({tag, type}).Le32({count, value});
}

ByteBuffer HandMade(std::int64_t width, std::int64_t height, std::int64_t stripBytes, std::int64_t next) {
    Bytes bytes;
    bytes.Text("II*").U8({0}).Le32({8}).Le16({7});
    Entry(bytes, TIFFTAG_IMAGEWIDTH, 4, 1, width);
    Entry(bytes, TIFFTAG_IMAGELENGTH, 4, 1, height);
    Entry(bytes, TIFFTAG_BITSPERSAMPLE, 3, 1, 8);
    Entry(bytes, TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_MINISBLACK);
    Entry(bytes, TIFFTAG_STRIPOFFSETS, 4, 1, 98);
    Entry(bytes, TIFFTAG_ROWSPERSTRIP, 4, 1, 0xFFFFFFFF);
    Entry(bytes, TIFFTAG_STRIPBYTECOUNTS, 4, 1, stripBytes);
    return bytes.Le32({next}).U8({7, 200, 8, 100}).Done();
}

TEST(Tiff, MakesTheBestOfDamagedFilesAndRefusesHostileOnes) {
    EXPECT_EQ(SpelledFile(HandMade(2, 2, 4, 0)), "070707 C8C8C8/080808 646464");
    EXPECT_EQ(SpelledFile(HandMade(2, 2, 4, 8)), "070707 C8C8C8/080808 646464") << "directories in a ring";
    EXPECT_EQ(SpelledFile(HandMade(40000, 40000, 4, 0)), kTooLarge);
    EXPECT_EQ(SpelledFile(HandMade(30000, 30000, 4, 0)), kUnsupported);
    EXPECT_EQ(SpelledFile(HandMade(30000, 30000, 900000000, 0)), kUnsupported);
    EXPECT_EQ(SpelledFile(HandMade(0, 2, 4, 0)), kUnsupported);
    ByteBuffer compressedOddly = HandMade(2, 2, 4, 0);
    compressedOddly[10 + 3 * 12] = 3; // the photometric tag becomes the compression tag, of a number unknown
    compressedOddly[10 + 3 * 12 + 8] = 99;
    EXPECT_EQ(SpelledFile(compressedOddly), kUnsupported);

    // A single strip that is cut off, its directory before it: the first rows are there, the last are white.
    ByteBuffer cut = HandMade(100, 400, 40000, 0);
    cut.resize(98);
    cut.resize(98 + 100 * 300, 77);
    const PixelArray picture = Read(cut);
    EXPECT_EQ(picture.Row(10)[0], 77);
    EXPECT_EQ(picture.Row(399)[0], 255);
}

} // namespace
} // namespace pictorel::codecs::testing
