// Metafiles that we wrote, read by other people's programs where the machine has them: the bitmap that these
// find has the same pixels.
#include "picture/codecs/JudgeFolder.h"
#include "picture/codecs/PictureSupport.h"
#include "picture/metafile/Metafile.h"

#include <QByteArray>

#include <iterator>
#include <ostream>
#include <tuple>

namespace pictorel::metafile {
namespace {

using codecs::ByteBuffer;
using codecs::ByteView;
using codecs::testing::JudgeFolder;
using codecs::testing::MakePicture;
using codecs::testing::SamePixels;

// A program, and how it turns the file behind these words into judged.svg, with its pictures inside.
struct Judge {
    const char* name;
    const char* toSvg;
};

void PrintTo(const Judge& judge, std::ostream* out) {
    *out << judge.name;
}

constexpr Judge kJudges[] = {
    {"inkscape", "inkscape --export-type=svg -o judged.svg"},
    {"soffice", "HOME=\"$PWD\" soffice --headless --convert-to svg --outdir ."},
};

// The first picture in a drawing, which holds it as text.
ByteBuffer PictureInside(const std::filesystem::path& drawing) {
    std::ifstream in(drawing);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::string before = ";base64,";
    const std::size_t found = text.find(before);
    if (found == std::string::npos) {
        return {};
    }
    const std::size_t first = found + before.size();
    const std::string coded = text.substr(first, text.find('"', first) - first);
    const QByteArray bytes = QByteArray::fromBase64(QByteArray::fromStdString(coded));
    return {bytes.begin(), bytes.end()};
}

// A judge, and which of MetafileCodecs().
class OtherPrograms : public ::testing::TestWithParam<std::tuple<Judge, std::size_t>> {};

TEST_P(OtherPrograms, FindTheSamePixels) {
    const auto& [judge, format] = GetParam();
    const codecs::Codec& codec = MetafileCodecs()[format];
    const JudgeFolder folder;
    if (folder.Run(std::string("command -v ") + judge.name) != 0) {
        GTEST_SKIP() << judge.name << " is not installed";
    }
    for (const int width : {64, 61}) { // rows without padding, and with
        const PixelArray picture = MakePicture(width, 43);
        const std::string file = "judged." + std::string(codec.extension);
        folder.Save(file, codec.write(picture, {}));
        ASSERT_EQ(folder.Run(std::string(judge.toSvg) + " " + file), 0);
        const ByteBuffer inside = PictureInside(folder.PathOf("judged.svg"));
        const codecs::Codec* const found = codecs::FindCodecByContent(inside);
        ASSERT_NE(found, nullptr) << width;
        EXPECT_TRUE(SamePixels(found->read(inside, {}), picture)) << width;
    }
}

INSTANTIATE_TEST_SUITE_P(Metafiles, OtherPrograms,
                         ::testing::Combine(::testing::ValuesIn(kJudges),
                                            ::testing::Range(std::size_t{0}, MetafileCodecs().size())),
                         [](const auto& parameter) {
                             return std::string(std::get<0>(parameter.param).name) +
                                    std::string(MetafileCodecs()[std::get<1>(parameter.param)].extension);
                         });

} // namespace
} // namespace pictorel::metafile
