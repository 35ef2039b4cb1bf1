// JPEG XL files made by libjxl's encoder, against the pixels that went into them.
#include "MadeExif.h"
#include "MadeProfiles.h"
#include "PictureSupport.h"
#include "picture/codecs/Exif.h"

#include <jxl/encode.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <stdexcept>

namespace pictorel::codecs::testing {
namespace {

enum class Depth { Eight, Sixteen, Float };

struct JxlRecipe {
    Depth depth = Depth::Eight;
    bool isLossless = true;
    bool isGrey = false; // green stands for all
    bool isProgressive = false;
    int orientation = 1;
    std::optional<JxlColorEncoding> colours{};
    ByteBuffer icc{};
    ByteBuffer exif{}; // a TIFF structure
    ByteBuffer xmp{};
    bool packsBoxes = false;
    int frames = 1; // those that follow the first are black
};

struct DestroyEncoder {
    void operator()(JxlEncoder* encoder) const { JxlEncoderDestroy(encoder); }
};

void Check(JxlEncoderStatus status) {
    if (status != JXL_ENC_SUCCESS) {
        throw std::runtime_error("the encoder failed");
    }
}

JxlColorEncoding Srgb(bool isGrey = false) {
    JxlColorEncoding colours;
    JxlColorEncodingSetToSRGB(&colours, isGrey ? JXL_TRUE : JXL_FALSE);
    return colours;
}

// R, G, B or grey, and alpha, as the encoder takes them; each sample repeats its 8 bits.
ByteBuffer SamplesOf(const PixelArray& picture, const JxlRecipe& recipe) {
    Bytes out;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            const std::uint8_t* const pixel = picture.Row(y) + std::ptrdiff_t{4} * x;
            for (const int component : {2, 1, 0, 3}) {
                if ((component == 3 && !picture.HasAlpha()) || (recipe.isGrey && component % 2 == 0)) {
                    continue;
                }
                const auto value = static_cast<float>(pixel[component]) / 255;
                std::uint8_t bytes[4];
                std::memcpy(bytes, &value, sizeof(value));
                switch (recipe.depth) {
                    case Depth::Eight:
                        out.U8({pixel[component]});
                        break;
                    case Depth::Sixteen:
                        out.U8({pixel[component], pixel[component]});
                        break;
                    case Depth::Float:
                        out.Append(bytes);
                        break;
                }
            }
        }
    }
    return out.Done();
}

JxlBasicInfo InfoOf(const PixelArray& picture, const JxlRecipe& recipe) {
    JxlBasicInfo info;
    JxlEncoderInitBasicInfo(&info);
    info.xsize = static_cast<std::uint32_t>(picture.Width());
    info.ysize = static_cast<std::uint32_t>(picture.Height());
    info.bits_per_sample = recipe.depth == Depth::Eight ? 8 : recipe.depth == Depth::Sixteen ? 16 : 32;
    info.exponent_bits_per_sample = recipe.depth == Depth::Float ? 8 : 0;
    info.num_color_channels = recipe.isGrey ? 1 : 3;
    info.num_extra_channels = picture.HasAlpha() ? 1 : 0;
    info.alpha_bits = picture.HasAlpha() ? info.bits_per_sample : 0;
    info.alpha_exponent_bits = picture.HasAlpha() ? info.exponent_bits_per_sample : 0;
    info.uses_original_profile = recipe.isLossless ? JXL_TRUE : JXL_FALSE;
    info.orientation = static_cast<JxlOrientation>(recipe.orientation);
    info.have_animation = recipe.frames > 1 ? JXL_TRUE : JXL_FALSE;
    info.animation.tps_numerator = info.animation.tps_denominator = 1;
    return info;
}

void AddBox(JxlEncoder* encoder, const char* type, const ByteBuffer& content, bool isPacked) {
    if (!content.empty()) {
        Check(
            JxlEncoderAddBox(encoder, type, content.data(), content.size(), isPacked ? JXL_TRUE : JXL_FALSE));
    }
}

void AddFrames(JxlEncoder* encoder, const PixelArray& picture, const JxlRecipe& recipe) {
    JxlEncoderFrameSettings* const settings = JxlEncoderFrameSettingsCreate(encoder, nullptr);
    Check(recipe.isLossless ? JxlEncoderSetFrameLossless(settings, JXL_TRUE)
                            : JxlEncoderSetFrameDistance(settings, 0.5F));
    JxlEncoderFrameSettingsSetOption(settings, JXL_ENC_FRAME_SETTING_KEEP_INVISIBLE, 1);
    if (recipe.isProgressive) {
        JxlEncoderFrameSettingsSetOption(settings, JXL_ENC_FRAME_SETTING_RESPONSIVE, 1);
        JxlEncoderFrameSettingsSetOption(settings, JXL_ENC_FRAME_SETTING_PROGRESSIVE_AC, 1);
    }
    const JxlDataType types[] = {JXL_TYPE_UINT8, JXL_TYPE_UINT16, JXL_TYPE_FLOAT};
    const JxlPixelFormat format{(recipe.isGrey ? 1U : 3U) + (picture.HasAlpha() ? 1U : 0U),
                                types[static_cast<int>(recipe.depth)], JXL_NATIVE_ENDIAN, 0};
    ByteBuffer samples = SamplesOf(picture, recipe);
    for (int i = 0; i < recipe.frames; ++i) {
        if (recipe.frames > 1) {
            JxlFrameHeader header;
            JxlEncoderInitFrameHeader(&header);
            header.duration = 1;
            Check(JxlEncoderSetFrameHeader(settings, &header));
        }
        Check(JxlEncoderAddImageFrame(settings, &format, samples.data(), samples.size()));
        std::fill(samples.begin(), samples.end(), std::uint8_t{0});
    }
}

ByteBuffer MakeJxl(const PixelArray& picture, const JxlRecipe& recipe = {}) {
    const std::unique_ptr<JxlEncoder, DestroyEncoder> owner(JxlEncoderCreate(nullptr));
    JxlEncoder* const encoder = owner.get();
    if (!recipe.exif.empty() || !recipe.xmp.empty()) {
        Check(JxlEncoderUseBoxes(encoder));
    }
    const JxlBasicInfo info = InfoOf(picture, recipe);
    JxlEncoderSetCodestreamLevel(encoder, 10); // of which 16 bits ask for
    Check(JxlEncoderSetBasicInfo(encoder, &info));
    const JxlColorEncoding colours = recipe.colours.value_or(Srgb(recipe.isGrey));
    Check(recipe.icc.empty() ? JxlEncoderSetColorEncoding(encoder, &colours)
                             : JxlEncoderSetICCProfile(encoder, recipe.icc.data(), recipe.icc.size()));
    if (!recipe.exif.empty()) { // four bytes tell where it starts behind them
        AddBox(encoder, "Exif", Bytes().Be32({0}).Append(recipe.exif).Done(), recipe.packsBoxes);
    }
    AddBox(encoder, "xml ", recipe.xmp, recipe.packsBoxes);
    AddFrames(encoder, picture, recipe);
    JxlEncoderCloseInput(encoder);
    ByteBuffer file(std::size_t{1} << 22);
    std::uint8_t* next = file.data();
    std::size_t left = file.size();
    Check(JxlEncoderProcessOutput(encoder, &next, &left));
    file.resize(file.size() - left);
    return file;
}

TEST(Jxl, LosslessPixelsComeBackAsTheyWere) {
    for (const bool withAlpha : {false, true}) {
        const PixelArray picture = MakePicture(61, 43, withAlpha);
        for (const Depth depth : {Depth::Eight, Depth::Sixteen, Depth::Float}) {
            EXPECT_TRUE(SamePixels(Read(MakeJxl(picture, {.depth = depth})), picture))
                << static_cast<int>(depth);
        }
        EXPECT_TRUE(SamePixels(Read(MakeJxl(picture, {.frames = 3})), picture));
    }
    const PixelArray large = MakePicture(700, 500); // several groups, on all cores
    EXPECT_TRUE(SamePixels(Read(MakeJxl(large)), large));
}

// Levels by which the pictures differ at most, alpha too.
int WorstDifference(const PixelArray& a, const PixelArray& b) {
    int worst = a.Width() == b.Width() && a.Height() == b.Height() && a.HasAlpha() == b.HasAlpha() ? 0 : 256;
    for (int y = 0; y < a.Height() && worst < 256; ++y) {
        for (int i = 0; i < 4 * a.Width(); ++i) {
            worst = std::max(worst, std::abs(a.Row(y)[i] - b.Row(y)[i]));
        }
    }
    return worst;
}

PixelArray MakeSlope(int width, int height) {
    PixelArray picture(width, height);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::uint8_t pixel[] = {static_cast<std::uint8_t>(60 + 150 * x / width),
                                          static_cast<std::uint8_t>(200 - 150 * y / height),
                                          static_cast<std::uint8_t>(100 + 50 * (x + y) / (width + height)),
                                          255};
            std::memcpy(rows + y * picture.Stride() + std::ptrdiff_t{4} * x, pixel, 4);
        }
    }
    return picture;
}

TEST(Jxl, LossyPixelsAreNear) {
    const PixelArray slope = MakeSlope(120, 90);
    for (const Depth depth : {Depth::Eight, Depth::Sixteen, Depth::Float}) {
        EXPECT_LE(WorstDifference(Read(MakeJxl(slope, {.depth = depth, .isLossless = false})), slope), 8);
    }
}

TEST(Jxl, ReadsGreysThroughTheirProfile) {
    const PixelArray picture = MakePicture(9, 7);
    for (const Depth depth : {Depth::Eight, Depth::Sixteen}) {
        const PixelArray plain = Read(MakeJxl(picture, {.depth = depth, .isGrey = true}));
        const PixelArray linear =
            Read(MakeJxl(picture, {.depth = depth, .isGrey = true, .icc = GreyProfile(1.0)}));
        for (int x = 0; x < 9; ++x) {
            const int grey = picture.Row(3)[4 * x + 1];
            EXPECT_EQ(plain.Row(3)[4 * x], grey);
            EXPECT_EQ(plain.Row(3)[4 * x + 2], grey);
            EXPECT_GT(linear.Row(3)[4 * x], grey);
        }
    }
}

TEST(Jxl, ConvertsToSrgb) {
    const PixelArray slope = MakeSlope(64, 64);
    JxlColorEncoding displayP3 = Srgb();
    displayP3.primaries = JXL_PRIMARIES_P3;
    JxlColorEncoding linear = Srgb();
    linear.transfer_function = JXL_TRANSFER_FUNCTION_LINEAR;
    const auto read = [&](const JxlColorEncoding& colours, bool isLossless) {
        return Read(MakeJxl(slope, {.depth = Depth::Sixteen, .isLossless = isLossless, .colours = colours}));
    };
    // Through a profile and in the library: the colours are the same.
    EXPECT_LE(WorstDifference(read(displayP3, true), read(displayP3, false)), 8);
    EXPECT_LE(WorstDifference(read(linear, true), read(linear, false)), 8);
    EXPECT_GT(WorstDifference(read(displayP3, true), slope), 15);
    const PixelArray light = read(linear, true);
    EXPECT_NEAR(light.Row(0)[1], 229, 2); // 200 / 255 of the light
    const PixelArray wide = Read(MakeJxl(slope, {.icc = WideRgbProfile()}));
    EXPECT_GT(WorstDifference(wide, slope), 10);
    EXPECT_FALSE(wide.Details().icc.empty());
    EXPECT_TRUE(read(Srgb(), true).Details().icc.empty());
    // White is the same whatever writes it; without care PQ comes out dark, or all white.
    JxlColorEncoding pq = Srgb();
    pq.primaries = JXL_PRIMARIES_2100;
    pq.transfer_function = JXL_TRANSFER_FUNCTION_PQ;
    PixelArray white(16, 16);
    std::memset(white.WritableRows(), 0x94, 16 * static_cast<std::size_t>(white.Stride())); // 203 cd/m2 in PQ
    for (const bool isLossless : {true, false}) {
        const PixelArray got =
            Read(MakeJxl(white, {.depth = Depth::Sixteen, .isLossless = isLossless, .colours = pq}));
        EXPECT_NEAR(got.Row(8)[4 * 8 + 1], 225, 6) << isLossless;
    }
}

TEST(Jxl, TurnsOnceAndKeepsBoxes) {
    const PixelArray picture = MakePicture(20, 10);
    const ByteBuffer packet = Bytes().Text("<rdf:RDF>Tea</rdf:RDF>").Done();
    for (int orientation = 1; orientation <= 8; ++orientation) {
        for (const bool packsBoxes : {false, true}) {
            const PixelArray read =
                Read(MakeJxl(picture, {.orientation = orientation,
                                       .exif = MadeExif({.orientation = orientation, .resolutionX = 300}),
                                       .xmp = packet,
                                       .packsBoxes = packsBoxes}));
            EXPECT_TRUE(SamePixels(read, ApplyOrientation(picture, orientation))) << orientation;
            EXPECT_EQ(ExifOrientation(read.Details().exif), 1);
            EXPECT_EQ(read.Details().exif, MadeExif({.resolutionX = 300, .thumbnail = false}));
            EXPECT_EQ(read.Details().xmp, packet) << packsBoxes;
            EXPECT_EQ(read.Details().dotsPerInchX, 300);
        }
    }
}

// Coarser steps of a file cut short, in the colours of the picture; nothing but an error before the first.
TEST(Jxl, ShowsWhatThereIsOfAFileCutShort) {
    PixelArray slope = MakeSlope(600, 400);
    const PixelArray noise = MakePicture(600, 400);
    std::uint8_t* const rows = slope.WritableRows();
    for (int y = 0; y < 400; ++y) { // so that there is something to cut
        for (int i = 0; i < 4 * 600; ++i) {
            rows[y * slope.Stride() + i] ^= i % 4 == 3 ? 0 : noise.Row(y)[i] & 15;
        }
    }
    for (const JxlRecipe& recipe :
         {JxlRecipe{.isLossless = false}, JxlRecipe{.isLossless = false, .isProgressive = true}}) {
        const ByteBuffer file = MakeJxl(slope, recipe);
        const PixelArray cut = Read(ByteView(file).first(file.size() * 3 / 4));
        ASSERT_EQ(cut.Width(), 600);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(cut.Row(20)[4 * 20 + i], slope.Row(20)[4 * 20 + i], 20) << i;
        }
        EXPECT_EQ(SpelledFile(ByteView(file).first(16)), kUnsupported);
    }
}

TEST(Jxl, ShowsWhatCameBeforeDamage) {
    const PixelArray picture = MakePicture(600, 600);
    ByteBuffer file = MakeJxl(picture, {.isLossless = false});
    std::fill(file.end() - 400, file.end() - 200, std::uint8_t{0xFF});
    const PixelArray read = Read(file);
    ASSERT_EQ(read.Width(), 600);
    int near = 0;
    for (int y = 0; y < 256; ++y) {
        near += std::abs(read.Row(y)[4 * 100 + 1] - picture.Row(y)[4 * 100 + 1]) < 40 ? 1 : 0;
    }
    EXPECT_GT(near, 200);
}

} // namespace
} // namespace pictorel::codecs::testing
