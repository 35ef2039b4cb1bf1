// Reading TIFF: every kind of file against the pixels that it was made from.
#include "picture/codecs/MadeProfiles.h"
#include "picture/codecs/MadeTiff.h"
#include "picture/codecs/PictureSupport.h"
#include "picture/codecs/tiff/Tiff.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

// What the editor must show for the levels of a pixel.
Pixel Expected(const TiffRecipe& recipe, int x, int y) {
    const int largest = recipe.bits < 8 ? (1 << recipe.bits) - 1 : 255;
    const auto level = [&](int sample) {
        return (TiffLevel(recipe, x, y, sample) * 255 + largest / 2) / largest;
    };
    switch (recipe.photometric) {
        case PHOTOMETRIC_MINISWHITE:
            return {255 - level(0), 255 - level(0), 255 - level(0), 255};
        case PHOTOMETRIC_MINISBLACK:
            return {level(0), level(0), level(0), 255};
        case PHOTOMETRIC_SEPARATED: {
            const auto light = [&](int ink) { return ((255 - level(ink)) * (255 - level(3)) + 127) / 255; };
            return {light(0), light(1), light(2), 255};
        }
        default:
            return {level(0), level(1), level(2), 255};
    }
}

::testing::AssertionResult Shows(const PixelArray& picture, const TiffRecipe& recipe,
                                 const std::function<Pixel(int, int)>& expected) {
    if (picture.Width() != recipe.width || picture.Height() != recipe.height) {
        return ::testing::AssertionFailure() << picture.Width() << " x " << picture.Height();
    }
    for (int y = 0; y < recipe.height; ++y) {
        for (int x = 0; x < recipe.width; ++x) {
            const Pixel found = PixelAt(picture, x, y);
            const Pixel wanted = expected(x, y);
            for (std::size_t i = 0; i < found.size(); ++i) {
                if (std::abs(found[i] - wanted[i]) > recipe.tolerance) {
                    return ::testing::AssertionFailure() << "component " << i << " at " << x << ", " << y
                                                         << ": " << found[i] << ", not " << wanted[i];
                }
            }
        }
    }
    return ::testing::AssertionSuccess();
}

class TiffKinds : public ::testing::TestWithParam<TiffRecipe> {};

TEST_P(TiffKinds, GivesItsPixels) {
    const TiffRecipe& recipe = GetParam();
    if (TIFFIsCODECConfigured(static_cast<std::uint16_t>(recipe.compression)) == 0) {
        GTEST_SKIP() << "this libtiff was built without the compression";
    }
    EXPECT_TRUE(Shows(Read(MadeTiff(recipe)), recipe, [&](int x, int y) { return Expected(recipe, x, y); }));
}

std::vector<TiffRecipe> Depths() {
    std::vector<TiffRecipe> all;
    for (const int bits : {1, 2, 3, 4, 6, 8, 10, 12, 14, 16, 24, 32, 64}) {
        for (const bool rgb : {false, true}) {
            for (const char* const mode : {"wl", "wb"}) {
                all.push_back({.name = (rgb ? "Rgb" : "Grey") + std::to_string(bits) + mode,
                               .bits = bits,
                               .samples = rgb ? 3 : 1,
                               .photometric = rgb ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISBLACK,
                               .mode = mode});
            }
        }
    }
    for (const int bits : {8, 16, 32}) {
        all.push_back({.name = "Signed" + std::to_string(bits),
                       .bits = bits,
                       .samples = 1,
                       .photometric = PHOTOMETRIC_MINISBLACK,
                       .format = SAMPLEFORMAT_INT});
    }
    for (const int bits : {16, 32, 64}) {
        all.push_back({.name = "Float" + std::to_string(bits),
                       .bits = bits,
                       .format = SAMPLEFORMAT_IEEEFP,
                       .mode = "wb"});
        if (bits > 16) { // and in little-endian files: the library does not write the others right
            all.push_back({.name = "FloatPredicted" + std::to_string(bits),
                           .bits = bits,
                           .compression = COMPRESSION_ADOBE_DEFLATE,
                           .format = SAMPLEFORMAT_IEEEFP,
                           .predictor = PREDICTOR_FLOATINGPOINT,
                           .mode = "wl"});
        }
    }
    return all;
}

std::vector<TiffRecipe> Layouts() {
    std::vector<TiffRecipe> all;
    for (const int tile : {0, 16}) {
        for (const bool separate : {false, true}) {
            for (const int bits : {4, 8, 16}) {
                for (const int photometric :
                     {PHOTOMETRIC_MINISWHITE, PHOTOMETRIC_RGB, PHOTOMETRIC_SEPARATED}) {
                    const int samples = photometric == PHOTOMETRIC_RGB         ? 3
                                        : photometric == PHOTOMETRIC_SEPARATED ? 4
                                                                               : 1;
                    all.push_back({.name = std::string(tile > 0 ? "Tiles" : "Strips") +
                                           (separate ? "Separate" : "Together") + std::to_string(bits) +
                                           "Photometric" + std::to_string(photometric),
                                   .bits = bits,
                                   .samples = samples,
                                   .photometric = photometric,
                                   .separate = separate,
                                   .tile = tile});
                }
            }
        }
    }
    for (const int rows : {1, 29}) {
        all.push_back({.name = "RowsPerStrip" + std::to_string(rows), .rowsPerStrip = rows, .mode = "w8"});
    }
    return all;
}

std::vector<TiffRecipe> Compressions() {
    std::vector<TiffRecipe> all;
    struct Lossless {
        const char* name;
        int compression;
    };
    for (const auto& [name, compression] :
         {Lossless{"PackBits", COMPRESSION_PACKBITS}, Lossless{"Lzw", COMPRESSION_LZW},
          Lossless{"Deflate", COMPRESSION_DEFLATE}, Lossless{"AdobeDeflate", COMPRESSION_ADOBE_DEFLATE},
          Lossless{"Lzma", COMPRESSION_LZMA}, Lossless{"Zstd", COMPRESSION_ZSTD}}) {
        for (const int predictor : {0, PREDICTOR_HORIZONTAL}) {
            for (const int bits : {8, 16, 32}) {
                if (predictor == 0 || compression != COMPRESSION_PACKBITS) {
                    all.push_back({.name = name + std::to_string(bits) + (predictor > 0 ? "Predicted" : ""),
                                   .bits = bits,
                                   .compression = compression,
                                   .tile = bits == 16 ? 16 : 0,
                                   .predictor = predictor});
                }
            }
        }
    }
    // Not the word-aligned kind of CCITT, which the library does not read back as it wrote it.
    for (const auto& [name, compression] :
         {Lossless{"None", COMPRESSION_NONE}, Lossless{"CcittRle", COMPRESSION_CCITTRLE},
          Lossless{"Fax3", COMPRESSION_CCITTFAX3}, Lossless{"Fax4", COMPRESSION_CCITTFAX4},
          Lossless{"Jbig", COMPRESSION_JBIG}}) {
        for (const int order : {FILLORDER_MSB2LSB, FILLORDER_LSB2MSB}) {
            const bool jbig = compression == COMPRESSION_JBIG;
            all.push_back({.name = "Bilevel" + std::string(name) + std::to_string(order),
                           .bits = 1,
                           .samples = 1,
                           .photometric = PHOTOMETRIC_MINISWHITE,
                           .compression = compression,
                           .rowsPerStrip = jbig ? 29 : 8,
                           .fillOrder = order});
        }
    }
    all.push_back({.name = "WebP", .compression = COMPRESSION_WEBP, .tags = [](TIFF* tiff) {
                       TIFFSetField(tiff, TIFFTAG_WEBP_LOSSLESS, 1);
                   }});
    all.push_back({.name = "Lerc", .compression = COMPRESSION_LERC});
    all.push_back({.name = "PixarLog", .compression = COMPRESSION_PIXARLOG, .tolerance = 2});
    all.push_back({.name = "JpegGrey",
                   .samples = 1,
                   .photometric = PHOTOMETRIC_MINISBLACK,
                   .compression = COMPRESSION_JPEG,
                   .tolerance = 24});
    all.push_back({.name = "ReversedWords", .bits = 16, .fillOrder = FILLORDER_LSB2MSB});
    all.push_back({.name = "ReversedLzw", .compression = COMPRESSION_LZW, .fillOrder = FILLORDER_LSB2MSB});
    return all;
}

const auto kName = [](const ::testing::TestParamInfo<TiffRecipe>& info) { return info.param.name; };
INSTANTIATE_TEST_SUITE_P(Depths, TiffKinds, ::testing::ValuesIn(Depths()), kName);
INSTANTIATE_TEST_SUITE_P(Layouts, TiffKinds, ::testing::ValuesIn(Layouts()), kName);
INSTANTIATE_TEST_SUITE_P(Compressions, TiffKinds, ::testing::ValuesIn(Compressions()), kName);

TEST(Tiff, PalettesOfSixteenAndOfEightBits) {
    for (const int bits : {1, 2, 4, 8, 16}) {
        for (const bool bytes : {false, true}) {
            const auto colours = static_cast<std::size_t>(1) << bits;
            std::array<std::vector<std::uint16_t>, 3> maps;
            for (std::size_t i = 0; i < colours; ++i) {
                for (std::size_t c = 0; c < maps.size(); ++c) {
                    maps[c].push_back(
                        static_cast<std::uint16_t>((i * 73 + c * 50) % 256 * (bytes ? 1 : 257)));
                }
            }
            const TiffRecipe recipe{.name = "palette",
                                    .bits = bits,
                                    .samples = 1,
                                    .photometric = PHOTOMETRIC_PALETTE,
                                    .tags = [&](TIFF* tiff) {
                                        TIFFSetField(tiff, TIFFTAG_COLORMAP, maps[0].data(), maps[1].data(),
                                                     maps[2].data());
                                    }};
            EXPECT_TRUE(Shows(Read(MadeTiff(recipe)), recipe,
                              [&](int x, int y) -> Pixel {
                                  const int index = TiffLevel(recipe, x, y, 0);
                                  const auto part = [&](int c) { return (index * 73 + c * 50) % 256; };
                                  return {part(0), part(1), part(2), 255};
                              }))
                << bits << (bytes ? " bytes" : " words");
        }
    }
}

TEST(Tiff, AlphaOfEachKind) {
    struct Row {
        const char* name;
        std::vector<int> extra;
        bool alpha;
        bool associated;
    };
    for (const Row& row : {Row{"unassociated", {EXTRASAMPLE_UNASSALPHA}, true, false},
                           Row{"associated", {EXTRASAMPLE_ASSOCALPHA}, true, true},
                           Row{"unspecified", {EXTRASAMPLE_UNSPECIFIED}, false, false}}) {
        for (const int bits : {8, 16}) {
            for (const bool separate : {false, true}) {
                const TiffRecipe recipe{.name = row.name,
                                        .bits = bits,
                                        .samples = 4,
                                        .separate = separate,
                                        .extra = row.extra,
                                        .tolerance = row.associated ? 1 : 0};
                const auto alpha = [](int x) { return x < 4 ? 0 : std::min(x * 8, 255); };
                const auto colour = [](int y, int sample) { return y * 8 + sample; };
                const PixelArray picture = Read(MadeTiff(recipe, [&](int x, int y, int sample) {
                    return sample == 3      ? alpha(x)
                           : row.associated ? colour(y, sample) * alpha(x) / 255
                                            : colour(y, sample);
                }));
                EXPECT_EQ(picture.HasAlpha(), row.alpha) << row.name;
                EXPECT_TRUE(Shows(
                    picture, recipe,
                    [&](int x, int y) -> Pixel {
                        const auto seen = [&](int sample) {
                            // As precisely as the product in the file tells.
                            const int product = colour(y, sample) * alpha(x) / 255;
                            return !row.associated || alpha(x) == 255 ? colour(y, sample)
                                   : alpha(x) == 0                    ? product
                                                   : std::min(255, (product * 255 + alpha(x) / 2) / alpha(x));
                        };
                        return {seen(0), seen(1), seen(2), row.alpha ? alpha(x) : 255};
                    }))
                    << row.name << bits;
            }
        }
    }
}

// Extra samples without their tag are alpha, unless they are all 0.
TEST(Tiff, AlphaWithoutItsTag) {
    for (const bool set : {false, true}) {
        ByteBuffer file = MadeTiff({.name = "undeclared", .samples = 4, .extra = {EXTRASAMPLE_UNSPECIFIED}},
                                   [&](int x, int, int sample) { return sample == 3 ? set * x : 200; });
        const std::array<std::uint8_t, 4> entry{338 & 255, 338 >> 8, 3, 0};
        const auto tag = std::search(file.begin(), file.end(), entry.begin(), entry.end());
        ASSERT_NE(tag, file.end());
        tag[0] = 337 & 255; // the names of inks, which do not matter here
        tag[2] = 2;
        const PixelArray picture = Read(file);
        EXPECT_EQ(picture.HasAlpha(), set);
        EXPECT_EQ(PixelAt(picture, 7, 3), (Pixel{200, 200, 200, set ? 7 : 255}));
    }
}

TEST(Tiff, LabColours) {
    // L* 0..255 or 0..65535, a* and b* signed in CIE's kind and about 128 in ICC's.
    struct Row {
        std::array<int, 3> lab; // of 8 bits, a* and b* signed
        Pixel colour;
    };
    for (const auto& [lab, colour] :
         {Row{{255, 0, 0}, {255, 255, 255, 255}}, Row{{0, 0, 0}, {0, 0, 0, 255}},
          Row{{137, 0, 0}, {128, 128, 128, 255}}, Row{{138, 81, 70}, {255, 0, 0, 255}},
          Row{{75, 68, -112}, {0, 0, 255, 255}}}) {
        for (const int photometric : {PHOTOMETRIC_CIELAB, PHOTOMETRIC_ICCLAB}) {
            const TiffRecipe recipe{.name = "lab", .photometric = photometric, .tolerance = 5};
            const auto level = [&, &values = lab](int, int, int sample) {
                const int value = values[static_cast<std::size_t>(sample)];
                return sample > 0 && photometric == PHOTOMETRIC_ICCLAB ? value + 128 : value & 255;
            };
            EXPECT_TRUE(Shows(Read(MadeTiff(recipe, level)), recipe,
                              [&, &wanted = colour](int, int) { return wanted; }));
        }
    }
    const TiffRecipe deep{.name = "lab16", .bits = 16, .photometric = PHOTOMETRIC_CIELAB, .tolerance = 1};
    EXPECT_TRUE(Shows(Read(MadeTiff(deep, [](int, int, int sample) { return sample == 0 ? 137 : 0; })), deep,
                      [](int, int) -> Pixel {
                          return {128, 128, 128, 255};
                      }));
}

TEST(Tiff, LightnessAndColourDifference) {
    const auto red = [](int, int, int sample) { return sample == 0 ? 76 : sample == 1 ? 85 : 255; };
    const auto sampling = [](int x, int y) {
        return [=](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_YCBCRSUBSAMPLING, x, y); };
    };
    for (const TiffRecipe& recipe :
         {TiffRecipe{.name = "raw", .photometric = PHOTOMETRIC_YCBCR, .tolerance = 2, .tags = sampling(1, 1)},
          TiffRecipe{.name = "tiles",
          .photometric = PHOTOMETRIC_YCBCR,
          .compression = COMPRESSION_LZW,
          .tile = 16,
          .tolerance = 2,
          .tags = sampling(1, 1)}}) {
        EXPECT_TRUE(Shows(Read(MadeTiff(recipe, red)), recipe, [](int, int) -> Pixel {
            return {255, 0, 0, 255};
        })) << recipe.name;
    }
    for (const int tile : {0, 16}) {
        for (const int step : {1, 2}) {
            const TiffRecipe recipe{.name = "jpeg",
                                    .photometric = PHOTOMETRIC_YCBCR,
                                    .compression = COMPRESSION_JPEG,
                                    .tile = tile,
                                    .rowsPerStrip = 16,
                                    .tolerance = 6,
                                    .tags = [&](TIFF* tiff) {
                                        sampling(step, step)(tiff);
                                        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
                                    }};
            const auto smooth = [](int x, int y, int sample) { return 40 + x * 2 + y + sample * 30; };
            EXPECT_TRUE(Shows(Read(MadeTiff(recipe, smooth)), recipe,
                              [&](int x, int y) -> Pixel {
                                  return {smooth(x, y, 0), smooth(x, y, 1), smooth(x, y, 2), 255};
                              }))
                << "sampled every " << step << (tile > 0 ? " in tiles" : "");
        }
    }
}

TEST(Tiff, LogarithmicLight) {
    const TiffRecipe recipe{
        .name = "light",
        .bits = 32,
        .samples = 1,
        .photometric = PHOTOMETRIC_LOGL,
        .compression = COMPRESSION_SGILOG,
        .format = SAMPLEFORMAT_IEEEFP,
        .tolerance = 3,
        .tags = [](TIFF* tiff) { TIFFSetField(tiff, TIFFTAG_SGILOGDATAFMT, SGILOGDATAFMT_FLOAT); }};
    const auto level = [](int x, int, int) { return x * 6; };
    EXPECT_TRUE(Shows(Read(MadeTiff(recipe, level)), recipe, [&](int x, int) -> Pixel {
        const int grey = static_cast<int>(255 * std::sqrt(x * 6 / 255.0)); // the library's rule for 8 bits
        return {grey, grey, grey, 255};
    }));
}

TEST(Tiff, OrientationsAreTurnedUpright) {
    // Two pixels across, one down: red, blue.
    const std::array<const char*, 8> upright{"FF0000 0000FF", "0000FF FF0000", "0000FF FF0000",
                                             "FF0000 0000FF", "FF0000/0000FF", "FF0000/0000FF",
                                             "0000FF/FF0000", "0000FF/FF0000"};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const TiffRecipe recipe{
            .name = "turned", .width = 2, .height = 1, .orientation = orientation, .tags = [](TIFF* tiff) {
                TIFFSetField(tiff, TIFFTAG_XRESOLUTION, 300.0);
                TIFFSetField(tiff, TIFFTAG_YRESOLUTION, 150.0);
            }};
        const PixelArray picture =
            Read(MadeTiff(recipe, [](int x, int, int sample) { return sample == 2 * x ? 255 : 0; }));
        EXPECT_EQ(Spelled(picture), upright[static_cast<std::size_t>(orientation) - 1]) << orientation;
        EXPECT_EQ(picture.Details().dotsPerInchX, orientation < 5 ? 300 : 150) << orientation;
    }
}

TEST(Tiff, ResolutionInInches) {
    struct Row {
        int unit;
        double x;
        double dotsPerInch;
    };
    for (const auto& [unit, x, dotsPerInch] :
         {Row{RESUNIT_INCH, 72, 72}, Row{RESUNIT_CENTIMETER, 118.11, 300}, Row{RESUNIT_NONE, 72, 0},
          Row{RESUNIT_INCH, 0, 0}, Row{RESUNIT_INCH, 299.9994, 299.9994}}) {
        const auto set = [unitTag = unit, dots = x](TIFF* tiff) {
            TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, unitTag);
            TIFFSetField(tiff, TIFFTAG_XRESOLUTION, dots);
            TIFFSetField(tiff, TIFFTAG_YRESOLUTION, dots);
        };
        EXPECT_DOUBLE_EQ(Read(MadeTiff({.name = "resolution", .tags = set})).Details().dotsPerInchX,
                         dotsPerInch);
    }
}

TEST(Tiff, ProfilesAreApplied) {
    const auto with = [](const ByteBuffer& icc) {
        return [&icc](TIFF* tiff) {
            TIFFSetField(tiff, TIFFTAG_ICCPROFILE, static_cast<std::uint32_t>(icc.size()), icc.data());
        };
    };
    const ByteBuffer wide = WideRgbProfile();
    const ByteBuffer grey = GreyProfile(1.0);
    const ByteBuffer ink = InkProfile();
    for (const int bits : {8, 16}) {
        const auto level = [](int, int, int sample) { return 200 - 50 * sample; };
        const PixelArray rgb = Read(MadeTiff({.name = "wide", .bits = bits, .tags = with(wide)}, level));
        EXPECT_GT(PixelAt(rgb, 0, 0)[0], 210);
        EXPECT_FALSE(rgb.Details().icc.empty());
        const PixelArray grown = Read(MadeTiff({.name = "grey",
                                                .bits = bits,
                                                .samples = 1,
                                                .photometric = PHOTOMETRIC_MINISBLACK,
                                                .tags = with(grey)},
                                               [](int, int, int) { return 55; }));
        EXPECT_NEAR(PixelAt(grown, 0, 0)[0], 128, 2);
        // In this profile cyan ink is the lightness, and the others do nothing.
        const PixelArray printed = Read(MadeTiff({.name = "ink",
                                                  .bits = bits,
                                                  .samples = 4,
                                                  .photometric = PHOTOMETRIC_SEPARATED,
                                                  .tags = with(ink)},
                                                 [](int, int, int sample) { return sample == 0 ? 0 : 255; }));
        EXPECT_EQ(PixelAt(printed, 0, 0), (Pixel{255, 255, 255, 255}));
    }
}

TEST(Tiff, TheFirstFullPageIsShown) {
    const auto page = [](int width, bool reduced) {
        return TiffRecipe{.name = "page", .width = width, .tags = [reduced](TIFF* tiff) {
                              TIFFSetField(tiff, TIFFTAG_SUBFILETYPE, reduced ? FILETYPE_REDUCEDIMAGE : 0);
                          }};
    };
    EXPECT_EQ(Read(MadeTiffPages({page(4, true), page(9, false), page(12, false)})).Width(), 9);
    EXPECT_EQ(Read(MadeTiffPages({page(5, false), page(9, false)})).Width(), 5);
    EXPECT_EQ(Read(MadeTiffPages({page(4, true), page(3, true)})).Width(), 4);
}

// Four pixels share one colour: the samples stand in the file in units of theirs.
TEST(Tiff, SharedColourDifference) {
    constexpr std::int64_t kPixels = 8 + 2 + 11 * 12 + 4;
    const ByteBuffer file = Bytes()
                                .Text("II*")
                                .U8({0})
                                .Le32({8})
                                .Le16({11})
                                .Le16({256, 3, 1, 0, 4, 0, 257, 3, 1, 0, 2, 0})
                                .Le16({258, 3, 1, 0, 8, 0, 259, 3, 1, 0, 1, 0})
                                .Le16({262, 3, 1, 0, 6, 0})
                                .Le16({273, 4, 1, 0, kPixels, 0})
                                .Le16({277, 3, 1, 0, 3, 0, 278, 3, 1, 0, 2, 0})
                                .Le16({279, 4, 1, 0, 12, 0, 284, 3, 1, 0, 1, 0})
                                .Le16({530, 3, 2, 0, 2, 2})
                                .Le32({0})
                                .U8({100, 120, 140, 160, 128, 128})
                                .U8({76, 76, 76, 76, 85, 255})
                                .Done();
    const PixelArray picture = Read(file);
    EXPECT_EQ(PixelAt(picture, 1, 0), (Pixel{120, 120, 120, 255}));
    EXPECT_EQ(PixelAt(picture, 0, 1), (Pixel{140, 140, 140, 255}));
    EXPECT_NEAR(PixelAt(picture, 3, 1)[0], 255, 2);
    EXPECT_NEAR(PixelAt(picture, 3, 1)[1], 0, 2);
}

} // namespace
} // namespace pictorel::codecs::testing
