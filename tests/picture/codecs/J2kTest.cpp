// JPEG 2000: codestreams made of any components, boxes made by hand, tiles in any order, and hostile headers.
#include "MadeProfiles.h"
#include "PictureSupport.h"
#include "picture/codecs/j2k/J2kLibrary.h"

#include <algorithm>
#include <vector>

namespace pictorel::codecs::testing {
namespace {

struct Component {
    int bits = 8;
    bool isSigned = false;
    int step = 1;             // from sample to sample, both ways
    std::vector<int> samples; // in rows
};

struct Recipe {
    int width = 2;
    int height = 1;
    int x0 = 0; // where the picture begins on the reference grid
    int y0 = 0;
    int tile = 0; // side; 0: one tile
    OPJ_PROG_ORDER order = OPJ_LRCP;
    int resolutions = 1;
    bool isInParts = false; // each resolution in a tile part of its own
    std::vector<Component> components;
};

ByteBuffer MakeCodestream(const Recipe& r) {
    std::vector<opj_image_cmptparm_t> layout;
    for (const Component& c : r.components) {
        opj_image_cmptparm_t one{};
        one.dx = one.dy = static_cast<OPJ_UINT32>(c.step);
        const int right = r.x0 + r.width;
        const int bottom = r.y0 + r.height;
        one.w = static_cast<OPJ_UINT32>((right + c.step - 1) / c.step - (r.x0 + c.step - 1) / c.step);
        one.h = static_cast<OPJ_UINT32>((bottom + c.step - 1) / c.step - (r.y0 + c.step - 1) / c.step);
        one.x0 = static_cast<OPJ_UINT32>(r.x0);
        one.y0 = static_cast<OPJ_UINT32>(r.y0);
        one.prec = static_cast<OPJ_UINT32>(c.bits);
        one.sgnd = c.isSigned ? 1 : 0;
        layout.push_back(one);
    }
    const J2kImage image(
        opj_image_create(static_cast<OPJ_UINT32>(layout.size()), layout.data(), OPJ_CLRSPC_GRAY));
    image->x0 = static_cast<OPJ_UINT32>(r.x0);
    image->y0 = static_cast<OPJ_UINT32>(r.y0);
    image->x1 = static_cast<OPJ_UINT32>(r.x0 + r.width);
    image->y1 = static_cast<OPJ_UINT32>(r.y0 + r.height);
    for (std::size_t i = 0; i < r.components.size(); ++i) {
        std::copy(r.components[i].samples.begin(), r.components[i].samples.end(), image->comps[i].data);
    }
    opj_cparameters_t parameters;
    opj_set_default_encoder_parameters(&parameters);
    parameters.tcp_numlayers = 1;
    parameters.cp_disto_alloc = 1;
    parameters.numresolution = r.resolutions;
    parameters.prog_order = r.order;
    parameters.tile_size_on = r.tile > 0 ? OPJ_TRUE : OPJ_FALSE;
    parameters.cp_tdx = parameters.cp_tdy = r.tile;
    parameters.tp_on = r.isInParts ? 1 : 0;
    parameters.tp_flag = 'R';
    J2kSink sink;
    J2kByteStream stream = MakeWriteStream(sink);
    const J2kCodec codec(opj_create_compress(OPJ_CODEC_J2K));
    EXPECT_TRUE(opj_setup_encoder(codec.get(), &parameters, image.get()) &&
                opj_start_compress(codec.get(), image.get(), stream.get()) &&
                opj_encode(codec.get(), stream.get()) && opj_end_compress(codec.get(), stream.get()));
    stream.reset();
    return sink.data;
}

ByteBuffer Box(std::string_view type, const ByteBuffer& content) {
    return Bytes().Be32({static_cast<std::int64_t>(content.size() + 8)}).Text(type).Append(content).Done();
}

ByteBuffer MakeJp2(const ByteBuffer& headerBoxes, const ByteBuffer& codestream) {
    return Bytes()
        .U8({0, 0, 0, 12, 'j', 'P', ' ', ' ', 13, 10, 0x87, 10})
        .Append(Box("ftyp", {'j', 'p', '2', ' ', 0, 0, 0, 0, 'j', 'p', '2', ' '}))
        .Append(Box("jp2h", headerBoxes))
        .Append(Box("jp2c", codestream))
        .Done();
}
ByteBuffer ColourBox(int number) {
    return Box("colr", {1, 0, 0, 0, 0, 0, static_cast<std::uint8_t>(number)});
}

struct Case {
    const char* name;
    ByteBuffer file;
    std::string expected;
};
void ExpectAll(const std::vector<Case>& cases) {
    for (const Case& c : cases) {
        EXPECT_EQ(SpelledFile(c.file), c.expected) << c.name;
    }
}

TEST(J2k, ReadsSamplesOfEveryKind) {
    ExpectAll({
        {"grey", MakeCodestream({.components = {{.samples = {5, 200}}}}), "050505 C8C8C8"},
        {"1 bit", MakeCodestream({.components = {{.bits = 1, .samples = {0, 1}}}}), "000000 FFFFFF"},
        {"4 bits", MakeCodestream({.components = {{.bits = 4, .samples = {8, 15}}}}), "888888 FFFFFF"},
        {"12 bits", MakeCodestream({.components = {{.bits = 12, .samples = {2048, 4095}}}}), "808080 FFFFFF"},
        {"16 bits", MakeCodestream({.components = {{.bits = 16, .samples = {257, 65535}}}}), "010101 FFFFFF"},
        {"20 bits", MakeCodestream({.components = {{.bits = 20, .samples = {4112, 1048575}}}}),
         "010101 FFFFFF"},
        {"24 bits with a sign",
         MakeCodestream({.components = {{.bits = 24, .isSigned = true, .samples = {-8388608, 8388607}}}}),
         "000000 FFFFFF"},
        {"8 bits with a sign", MakeCodestream({.components = {{.isSigned = true, .samples = {-128, 127}}}}),
         "000000 FFFFFF"},
        {"16 bits with a sign",
         MakeCodestream({.components = {{.bits = 16, .isSigned = true, .samples = {-32768, 32767}}}}),
         "000000 FFFFFF"},
        {"RGB",
         MakeCodestream({.components = {{.samples = {1, 4}}, {.samples = {2, 5}}, {.samples = {3, 6}}}}),
         "010203 040506"},
        {"depths that differ",
         MakeCodestream({.components = {{.bits = 1, .samples = {1, 0}},
                                        {.samples = {2, 5}},
                                        {.bits = 12, .samples = {0, 4095}}}}),
         "FF0200 0005FF"},
        {"grey and alpha", MakeCodestream({.components = {{.samples = {1, 4}}, {.samples = {128, 255}}}}),
         "01010180 040404FF"},
        {"away from the origin", MakeCodestream({.x0 = 3, .y0 = 5, .components = {{.samples = {7, 9}}}}),
         "070707 090909"},
        {"coarse everywhere is a smaller picture",
         MakeCodestream({.width = 4, .height = 2, .components = {{.step = 2, .samples = {7, 9}}}}),
         "070707 090909"},
        {"many channels: the first three are colours",
         MakeCodestream({.width = 1,
                         .components = {{.samples = {1}},
                                        {.samples = {2}},
                                        {.samples = {3}},
                                        {.samples = {4}},
                                        {.samples = {5}}}}),
         "010203"},
        {"between coarser samples there is a slope",
         MakeCodestream({.width = 6,
                         .components = {{.samples = {0, 0, 0, 0, 0, 0}},
                                        {.step = 2, .samples = {0, 128, 0}},
                                        {.samples = {0, 0, 0, 0, 0, 0}}}}),
         "000000 002000 006000 006000 002000 000000"},
        {"coarse chroma is YCC",
         MakeCodestream({.width = 2,
                         .height = 2,
                         .components = {{.samples = {0, 64, 128, 255}},
                                        {.step = 2, .samples = {128}},
                                        {.step = 2, .samples = {128}}}}),
         "000000 404040/808080 FFFFFF"},
    });
}

TEST(J2k, ReadsAllOrdersAndTilesInAnyOrder) {
    std::vector<int> samples(70 * 50);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = static_cast<int>(i * 7 % 251);
    }
    const Component ramp{.samples = samples};
    const PixelArray whole =
        Read(MakeCodestream({.width = 70, .height = 50, .components = {ramp, ramp, ramp}}));
    for (const auto order : {OPJ_LRCP, OPJ_RLCP, OPJ_RPCL, OPJ_PCRL, OPJ_CPRL}) {
        const ByteBuffer file = MakeCodestream(
            {.width = 70, .height = 50, .tile = 32, .order = order, .components = {ramp, ramp, ramp}});
        EXPECT_TRUE(SamePixels(Read(file), whole)) << order;
    }
    // The first tile part goes behind the second.
    ByteBuffer file =
        MakeCodestream({.width = 70, .height = 50, .tile = 64, .components = {ramp, ramp, ramp}});
    const std::vector<std::uint8_t> mark{0xFF, 0x90};
    const auto first = std::search(file.begin(), file.end(), mark.begin(), mark.end());
    const auto second = std::search(first + 12, file.end(), mark.begin(), mark.end());
    const auto end = second + (second[8] << 8 | second[9]);
    std::rotate(first, second, end);
    EXPECT_TRUE(SamePixels(Read(file), whole));
    // Without its last tile the picture is white there.
    file.resize(static_cast<std::size_t>(first - file.begin() + (end - second)));
    const PixelArray cut = Read(file);
    EXPECT_EQ(cut.Row(0)[0], 255);
    EXPECT_EQ(cut.Row(0)[4 * 69], whole.Row(0)[4 * 69]);
}

// The finer details of a file that is cut are missing, not the picture.
TEST(J2k, ShowsTheCoarserStepsOfAFileCutShort) {
    constexpr int kSide = 128;
    std::vector<Component> slopes(3);
    for (int i = 0; i < kSide * kSide; ++i) {
        const int x = i % kSide;
        const int y = i / kSide;
        slopes[0].samples.push_back(2 * x);
        slopes[1].samples.push_back(2 * y);
        slopes[2].samples.push_back((x + y + (x * y) % 7) % 256);
    }
    for (const auto order : {OPJ_RLCP, OPJ_RPCL, OPJ_CPRL}) {
        ByteBuffer file = MakeCodestream(
            {.width = kSide, .height = kSide, .order = order, .resolutions = 5, .components = slopes});
        const bool isByComponent = order == OPJ_CPRL;
        file.resize(isByComponent ? file.size() / 4 * 3 : file.size() / 4);
        const PixelArray picture = Read(file);
        for (int at = 8; at < kSide - 8; at += 5) {
            const std::uint8_t* const pixel = picture.Row(at) + std::ptrdiff_t{4} * at;
            EXPECT_NEAR(pixel[2], 2 * at, 16) << order;
            EXPECT_NEAR(pixel[1], 2 * at, 16) << order;
            if (!isByComponent) { // else it is cut before blue
                EXPECT_NEAR(pixel[0], 2 * at, 16) << order;
            }
        }
    }
}

// In parts by their fineness, of which a file may hold some only, with or without a marker at its end.
TEST(J2k, ShowsATileOfWhichPartsAreMissing) {
    constexpr int kSide = 128;
    std::vector<Component> slopes(3);
    for (int i = 0; i < kSide * kSide; ++i) {
        slopes[0].samples.push_back(2 * (i % kSide));
        slopes[1].samples.push_back(2 * (i / kSide));
        slopes[2].samples.push_back(i * 7 % 256);
    }
    const ByteBuffer file = MakeCodestream({.width = kSide,
                                            .height = kSide,
                                            .order = OPJ_RLCP,
                                            .resolutions = 4,
                                            .isInParts = true,
                                            .components = slopes});
    EXPECT_EQ(Read(file).PartShown(), 1);
    const auto partAt = [&](std::size_t from) {
        constexpr std::uint8_t kTilePart[] = {0xFF, 0x90, 0, 10};
        return static_cast<std::size_t>(std::search(file.begin() + static_cast<std::ptrdiff_t>(from),
                                                    file.end(), kTilePart, kTilePart + 4) -
                                        file.begin());
    };
    std::size_t end = partAt(0);
    for (int parts = 1; parts < 4; ++parts) {
        end = partAt(end + 1);
        ASSERT_LT(end, file.size());
        ByteBuffer cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(end));
        for (const bool hasEnd : {false, true}) {
            const PixelArray picture = Read(cut);
            EXPECT_EQ(picture.PartShown(), parts / 4.0) << hasEnd;
            for (int at = 16; at < kSide - 16; at += 5) {
                EXPECT_NEAR(picture.Row(at)[4 * at + 1], 2 * at, 24) << parts;
            }
            cut.insert(cut.end(), {0xFF, 0xD9});
        }
    }
}

TEST(J2k, ReadsWhatBoxesSay) {
    const ByteBuffer three =
        MakeCodestream({.components = {{.samples = {1, 4}}, {.samples = {2, 5}}, {.samples = {3, 6}}}});
    const ByteBuffer indices = MakeCodestream({.components = {{.samples = {1, 0}}}});
    const ByteBuffer four = MakeCodestream(
        {.components = {
             {.samples = {10, 4}}, {.samples = {20, 5}}, {.samples = {30, 6}}, {.samples = {128, 0}}}});
    const ByteBuffer palette = Bytes()
                                   .Append(Box("pclr", {0, 2, 3, 7, 7, 7, 10, 20, 30, 40, 50, 60}))
                                   .Append(Box("cmap", {0, 0, 1, 0, 0, 0, 1, 1, 0, 0, 1, 2}))
                                   .Append(ColourBox(16))
                                   .Done();
    const auto defined = [&](int role) {
        return Bytes()
            .Append(ColourBox(16))
            .Append(Box("cdef", {0, 4, 0, 0, 0, 0, 0, 1, 0, 1, 0, 0,
                                 0, 2, 0, 2, 0, 0, 0, 3, 0, 3, 0, static_cast<std::uint8_t>(role),
                                 0, 0}))
            .Done();
    };
    const ByteBuffer swapped =
        Bytes()
            .Append(ColourBox(16))
            .Append(Box("cdef", {0, 3, 0, 0, 0, 0, 0, 3, 0, 1, 0, 0, 0, 2, 0, 2, 0, 0, 0, 1}))
            .Done();
    ExpectAll({
        {"RGB", MakeJp2(ColourBox(16), three), "010203 040506"},
        {"a palette", MakeJp2(palette, indices), "28323C 0A141E"},
        {"a palette without its map of channels", MakeJp2(ColourBox(17), indices), "010101 000000"},
        {"channels in another order", MakeJp2(swapped, three), "030201 060504"},
        {"alpha", MakeJp2(defined(1), four), "0A141E80 04050600"},
        {"premultiplied alpha", MakeJp2(defined(2), four), "14283C80 04050600"},
        {"YCC",
         MakeJp2(ColourBox(18), MakeCodestream({.components = {{.samples = {76, 128}},
                                                               {.samples = {85, 128}},
                                                               {.samples = {255, 128}}}})),
         "FE0000 808080"},
        {"CMYK",
         MakeJp2(ColourBox(12), MakeCodestream({.components = {{.samples = {255, 0}},
                                                               {.samples = {0, 0}},
                                                               {.samples = {0, 0}},
                                                               {.samples = {0, 255}}}})),
         "00FFFF 000000"},
        {"Lab",
         MakeJp2(ColourBox(14), MakeCodestream({.components = {{.samples = {255, 0}},
                                                               {.samples = {128, 128}},
                                                               {.samples = {96, 96}}}})),
         "FFFFFF 000000"},
        {"a palette and no word on its use",
         MakeJp2(Box("pclr", {0, 2, 3, 7, 7, 7, 10, 20, 30, 40, 50, 60}), indices), "28323C 0A141E"},
        {"a box of nonsense length before the codestream",
         MakeJp2(Bytes().U8({0, 0, 0, 4}).Text("junk").Done(), three), "010203 040506"},
        {"a header that swallows the codestream",
         [&] {
             ByteBuffer file = MakeJp2(ColourBox(16), three);
             file[34] = 0x7F;
             return file;
         }(),
         "010203 040506"},
        {"no codestream", MakeJp2(ColourBox(16), {}), kUnsupported},
    });
}

TEST(J2k, KeepsProfileResolutionAndExif) {
    PixelArray picture = MakePicture(40, 30, true);
    EXPECT_EQ(Write("j2k", MakePicture(4, 4))[0], 0xFF); // nothing to say but pixels: a bare codestream
    Metadata details;
    details.dotsPerInchX = 300;
    details.dotsPerInchY = 72;
    details.icc = SrgbProfile();
    details.exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
    picture.SetDetails(details);
    const PixelArray again = Read(Write("j2k", picture));
    EXPECT_TRUE(SamePixels(again, picture));
    EXPECT_EQ(again.Details(), details);

    const ByteBuffer wide = Bytes().U8({2, 0, 0}).Append(WideRgbProfile()).Done();
    const ByteBuffer file =
        MakeJp2(Box("colr", wide),
                MakeCodestream(
                    {.components = {{.samples = {120, 4}}, {.samples = {140, 5}}, {.samples = {100, 6}}}}));
    EXPECT_NE(SpelledFile(file).substr(0, 6), "788C64");
    EXPECT_FALSE(Read(file).Details().icc.empty());
}

// The strongest colours side by side ask for more bits than the library sets aside for their differences.
TEST(J2k, KeepsTheStrongestColours) {
    PixelArray picture(64, 64);
    std::uint32_t random = 3;
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x) {
            std::uint8_t* const pixel = rows + y * picture.Stride() + std::ptrdiff_t{4} * x;
            random = random * 1664525 + 1013904223;
            const bool isBlue = (random >> 30) % 2 == 0;
            pixel[0] = isBlue ? 255 : 0;
            pixel[1] = pixel[2] = isBlue ? 0 : 255;
            pixel[3] = 255;
        }
    }
    EXPECT_TRUE(SamePixels(Read(Write("j2k", picture)), picture));
}

TEST(J2k, LowerQualityIsSmallerAndStillThePicture) {
    const PixelArray picture = MakePicture(200, 200);
    const auto size = [&](int quality) {
        return FindCodecByExtension("j2k")->write(picture, {.quality = quality}).size();
    };
    EXPECT_LT(size(10), size(90));
    EXPECT_LT(size(90), size(100));
}

// The headers of a codestream of which each field can be anything; its one tile holds nothing.
struct Header {
    std::int64_t width = 8;
    std::int64_t height = 8;
    std::int64_t tile = 8;
    int components = 1;
    int bits = 8;
    int step = 1;
    int layers = 1;
    int levels = 1;
    int precinct = 0xFF;
};
ByteBuffer MakeHostile(const Header& h) {
    Bytes file;
    file.U8({0xFF, 0x4F, 0xFF, 0x51, (38 + 3 * h.components) >> 8, (38 + 3 * h.components) & 255, 0, 0});
    file.Be32({h.width, h.height, 0, 0, h.tile, h.tile, 0, 0});
    file.U8({h.components >> 8, h.components & 255});
    for (int i = 0; i < h.components; ++i) {
        file.U8({h.bits - 1, h.step, h.step});
    }
    file.U8({0xFF, 0x52, 0, 13 + h.levels, 1, 0, h.layers >> 8, h.layers & 255, 0, h.levels, 4, 4, 0, 1});
    for (int i = 0; i <= h.levels; ++i) {
        file.U8({h.precinct});
    }
    file.U8({0xFF, 0x5C, 0, 4 + 3 * h.levels, 0x40});
    for (int i = 0; i <= 3 * h.levels; ++i) {
        file.U8({0x40});
    }
    return file.U8({0xFF, 0x90, 0, 10, 0, 0, 0, 0, 0, 0, 0, 1, 0xFF, 0x93, 0, 0, 0xFF, 0xD9}).Done();
}

TEST(J2k, RefusesWhatTheFileCannotJustify) {
    EXPECT_NE(SpelledFile(MakeHostile({})).substr(0, 5), "error"); // the maker makes good files too
    const struct {
        const char* name;
        Header header;
        const char* expected;
    } cases[] = {
        {"too large", {.width = 40000, .tile = 40000}, kTooLarge},
        {"large and empty", {.width = 30000, .height = 30000, .tile = 30000}, kUnsupported},
        {"millions of tiles", {.width = 3000, .height = 3000, .tile = 1}, kUnsupported},
        {"thousands of components",
         {.width = 512, .height = 512, .tile = 16, .components = 16384},
         kUnsupported},
        {"a picture for each of many components",
         {.width = 4000, .height = 4000, .tile = 4000, .components = 400},
         kUnsupported},
        {"a precinct for every other pixel",
         {.width = 4000, .height = 4000, .tile = 4000, .precinct = 0x11},
         kUnsupported},
        {"many layers of many precincts",
         {.width = 2000, .height = 2000, .tile = 2000, .layers = 65535, .precinct = 0x55},
         kUnsupported},
        {"too many levels", {.levels = 60}, kUnsupported},
        {"38 bits", {.bits = 38}, kUnsupported},
        {"samples of no size", {.step = 0}, kUnsupported},
        {"no tile size", {.tile = 0}, kUnsupported},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SpelledFile(MakeHostile(c.header)), c.expected) << c.name;
    }
}

} // namespace
} // namespace pictorel::codecs::testing
