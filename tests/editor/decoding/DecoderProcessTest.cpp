// Decoding in a program of its own: the same pictures as inside, and an editor that outlives whatever that
// program does.
#include "editor/TemporaryFolder.h"
#include "editor/decoding/DecoderProcess.h"
#include "editor/decoding/WallsText.h"
#include "picture/ImagingError.h"
#include "picture/MadeDetails.h"
#include "picture/metafile/Records.h"
#include "support/Pictures.h"

#include <QFontDatabase>
#include <QStringList>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace pictorel::test {
namespace {

namespace fs = std::filesystem;
using std::chrono::milliseconds;
using test::Random;
using test::SamePixels;

const std::string kProgram = PICTOREL_DECODER; // NOLINT(cert-err58-cpp): a test may end here

codecs::CodecTable AllFormats() {
    return codecs::CodecTable(metafile::MetafileCodecs());
}

std::optional<PixelArray> Inside(const std::string& fileName) {
    const std::string content = ContentOf(fileName);
    const codecs::ByteView bytes{reinterpret_cast<const std::uint8_t*>(content.data()), content.size()};
    const codecs::CodecTable formats = AllFormats();
    const codecs::Codec* const codec = formats.FindByContent(bytes);
    try {
        return codec == nullptr ? std::nullopt : std::optional(codec->read(bytes, {}));
    } catch (const ImagingError&) {
        return std::nullopt;
    }
}

std::optional<PixelArray> Through(DecoderProcess& decoder, const std::string& fileName) {
    try {
        auto picture = decoder.Decode(fileName);
        EXPECT_TRUE(picture) << "the program does not start";
        return picture;
    } catch (const ImagingError&) {
        return std::nullopt;
    }
}

::testing::AssertionResult SamePicture(const PixelArray& a, const PixelArray& b) {
    if (a.HasAlpha() != b.HasAlpha() || a.Reduction() != b.Reduction()) {
        return ::testing::AssertionFailure() << "other flags";
    }
    if (a.PartShown() != b.PartShown()) {
        return ::testing::AssertionFailure() << "other parts are said to be shown";
    }
    if (a.Details() != b.Details()) {
        return ::testing::AssertionFailure() << "other metadata";
    }
    return SamePixels(a, b);
}

// Programs that this process has started and not seen off, those that are dead among them.
std::vector<pid_t> Children() {
    std::vector<pid_t> children;
    for (const auto& thread : fs::directory_iterator("/proc/self/task")) {
        std::ifstream list(thread.path() / "children");
        for (pid_t process = 0; list >> process;) {
            children.push_back(process);
        }
    }
    return children;
}

class DecoderProcessTest : public ::testing::Test {
  protected:
    std::string Save(const PixelArray& picture, const char* extension) const {
        const auto bytes = codecs::FindCodecByExtension(extension)->write(picture, {});
        return folder_.Make(std::string("picture.") + extension,
                            {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }

    // A name of the program that answers in a manner of its own.
    std::string FalseDecoder(const char* manner) const {
        std::string name = folder_.Path(manner);
        fs::create_symlink(PICTOREL_FALSE_DECODER, name);
        return name;
    }

    const TemporaryFolder folder_;
};

// A drawing with a line of letters of several scripts in every one of the fonts.
codecs::ByteBuffer Writing(const std::vector<std::string>& families) {
    using codecs::testing::Bytes;
    using metafile::EmfType;
    constexpr std::u16string_view kLetters = u"Ag\u00E9\u0416\u05D0\u4E2D\u2192";
    constexpr int kNameLetters = 32;
    metafile::testing::Emf drawing(400, 40 * 3 * static_cast<int>(families.size()));
    int y = 0;
    for (const std::string& family : families) {
        for (const int weight : {100, 400, 700}) {
            Bytes font;
            font.Le32({3, -30, 0, 0, 0, weight}).U8({weight == 700 ? 1 : 0, 0, 0, 0, 0, 0, 0, 0});
            for (std::size_t i = 0; i < kNameLetters; ++i) {
                font.Le16({i < family.size() ? family[i] : 0});
            }
            Bytes text;
            text.Le32({0, 0, 0, 0, 1, 0, 0, 0, y, kLetters.size(), 76, 0, 0, 0, 0, 0, 0});
            for (const char16_t letter : kLetters) {
                text.Le16({letter});
            }
            drawing.Add(EmfType::CreateFont, font.Done())
                .Add(EmfType::SelectObject, {3})
                .Add(EmfType::ExtTextOutW, text.Done());
            y += 40;
        }
    }
    return drawing.Done();
}

TEST_F(DecoderProcessTest, DrawsTextInEveryFontAsInside) {
    std::vector<std::string> families{"Arial", "Times New Roman", "Courier New", "Wingdings", "No Such Font"};
    for (const QString& family : QFontDatabase::families().mid(0, 40)) {
        families.push_back(family.toStdString());
    }
    const auto bytes = Writing(families);
    const std::string name =
        folder_.Make("text.emf", {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    DecoderProcess decoder(kProgram);
    const auto through = decoder.Decode(name);
    const auto inside = Inside(name);
    ASSERT_TRUE(through && inside);
    EXPECT_TRUE(SamePicture(*through, *inside));
    int inked = 0;
    for (int y = 0; y < through->Height(); ++y) {
        for (int x = 0; x < through->Width(); ++x) {
            inked += through->Row(y)[4 * x] < 128 ? 1 : 0;
        }
    }
    EXPECT_GT(inked, 100 * static_cast<int>(families.size()));
}

class DecodedCorpus : public ::testing::TestWithParam<const char*> {};

TEST_P(DecodedCorpus, IsTheSameAsInside) {
    DecoderProcess decoder(kProgram);
    int opened = 0;
    for (const auto& entry : fs::recursive_directory_iterator(fs::path(PICTOREL_CORPUS) / GetParam())) {
        if (!entry.is_regular_file()) {
            continue;
        }
        const std::string name = entry.path().string();
        const auto inside = Inside(name);
        const auto through = Through(decoder, name);
        ASSERT_EQ(through.has_value(), inside.has_value()) << name;
        if (inside) {
            ++opened;
            EXPECT_TRUE(SamePicture(*through, *inside)) << name;
        }
    }
    EXPECT_GT(opened, 5);
}

INSTANTIATE_TEST_SUITE_P(EveryFormat, DecodedCorpus,
                         ::testing::Values("bmp", "emf", "gif", "j2k", "jpg", "pcx", "png", "ras", "tga",
                                           "tif", "wmf"),
                         [](const auto& format) { return std::string(format.param); });

TEST_F(DecoderProcessTest, LargePicturesStayValuesAfterTheProgramHasGone) {
    PixelArray made = Random({1300, 900}, test::Alpha::Random);
    made.SetHasAlpha(true);
    made.SetDetails(MadeDetails());
    const std::string name = Save(made, "PNG");
    std::optional<PixelArray> picture;
    {
        DecoderProcess decoder(kProgram);
        picture = decoder.Decode(name);
        ASSERT_TRUE(decoder.Decode(name)) << "another one meanwhile";
    }
    EXPECT_TRUE(Children().empty());
    const auto inside = Inside(name);
    ASSERT_TRUE(picture && inside);
    EXPECT_TRUE(SamePicture(*picture, *inside));

    PixelArray copy = *picture;
    copy.WritableRows()[0] ^= 0xFF;
    EXPECT_TRUE(SamePixels(*picture, *inside)) << "writing to a copy changed the picture";
    copy = PixelArray();
    const std::uint8_t* const before = picture->Row(0);
    picture->WritableRows()[0] ^= 0xFF;
    EXPECT_EQ(picture->Row(0), before) << "the only owner writes in place";
    EXPECT_NE(picture->Row(0)[0], inside->Row(0)[0]);
}

TEST_F(DecoderProcessTest, WhateverTheProgramSaysCostsOnePictureAtMost) {
    const std::string picture = Save(Random({20, 10}), "BMP");
    for (const char* const manner : {"dies",
                                     "leaves",
                                     "too-short",
                                     "too-long",
                                     "other-mark",
                                     "other-outcome",
                                     "always-fonts",
                                     "no-pixels",
                                     "vast",
                                     "negative",
                                     "fewer-bytes",
                                     "behind-the-end",
                                     "before-the-beginning",
                                     "beside-a-page",
                                     "more-than-all-shown",
                                     "endless-details",
                                     "details-of-negative-length",
                                     "no-resolution",
                                     "shrinks-the-memory",
                                     "seals-the-memory"}) {
        DecoderProcess decoder(FalseDecoder(manner));
        for (int i = 0; i < 2; ++i) { // the program for the second is another
            EXPECT_THROW(decoder.Decode(picture), ImagingError) << manner;
        }
    }
    EXPECT_TRUE(Children().empty());

    DecoderProcess good(FalseDecoder("good")); // or the cases above would prove nothing
    const auto decoded = good.Decode(picture);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(decoded->Width(), 1024);
    EXPECT_EQ(decoded->Row(511)[4095], 0);
}

TEST_F(DecoderProcessTest, TextFromTheProgramIsPlain) {
    DecoderProcess decoder(FalseDecoder("markup"));
    try {
        decoder.Decode(Save(Random({20, 10}), "BMP"));
        FAIL();
    } catch (const ImagingError& error) {
        const std::string text = error.what();
        EXPECT_EQ(text.find_first_of("<>&\n\xFF"), std::string::npos) << text;
        EXPECT_NE(text.find("amp;"), std::string::npos) << text;
        EXPECT_LE(text.size(), 256U);
    }
}

TEST_F(DecoderProcessTest, AHangEndsWithItsTimeOrWhenAsked) {
    const std::string picture = Save(Random({20, 10}), "BMP");
    const std::string program = FalseDecoder("hangs");
    const auto secondsOf = [&](DecoderProcess& decoder) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_THROW(decoder.Decode(picture), ImagingError);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    DecoderProcess impatient(program, milliseconds(300));
    EXPECT_LT(secondsOf(impatient), 20);

    DecoderProcess patient(program);
    int asked = 0;
    patient.SetKeepWaiting([&] { return ++asked < 5; });
    EXPECT_LT(secondsOf(patient), 20);
    EXPECT_EQ(asked, 5);
}

TEST_F(DecoderProcessTest, ItsDeathInTheMidstOfAPictureIsSurvived) {
    const std::string slow = Save(Random({1200, 900}), "J2K");
    DecoderProcess decoder(kProgram);
    int killed = 0;
    decoder.SetKeepWaiting([&] {
        for (const pid_t process : Children()) {
            killed += ::kill(process, SIGKILL) == 0 ? 1 : 0;
        }
        return true;
    });
    // It may be killed before it takes the request, too: then it does not start, as far as one can see.
    try {
        EXPECT_FALSE(decoder.Decode(slow));
    } catch (const ImagingError& error) {
        EXPECT_EQ(error.Kind(), ImagingFailure::UnsupportedFormat);
    }
    EXPECT_GT(killed, 0);
    decoder.SetKeepWaiting(nullptr);
    const auto picture = decoder.Decode(slow);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->Width(), 1200);
}

TEST_F(DecoderProcessTest, TheProgramEndsWithAnEditorThatIsKilled) {
    const pid_t editor = ::fork();
    if (editor == 0) {
        const DecoderRoom room(kProgram, false);
        ::pause();
        std::_Exit(EXIT_FAILURE);
    }
    const auto childOfEditor = [&] {
        std::ifstream list("/proc/" + std::to_string(editor) + "/task/" + std::to_string(editor) +
                           "/children");
        pid_t process = -1;
        list >> process;
        return process;
    };
    const auto stateOf = [](pid_t process) { // the letter behind the name in brackets; 'X' where it is gone
        const std::string line = ContentOf("/proc/" + std::to_string(process) + "/stat");
        return line.empty() ? 'X' : line[line.rfind(')') + 2];
    };
    const auto within = [](double seconds, const std::function<bool()>& isSo) {
        for (int i = 0; i < seconds * 100 && !isSo(); ++i) {
            std::this_thread::sleep_for(milliseconds(10));
        }
        return isSo();
    };
    ASSERT_TRUE(within(10, [&] { return childOfEditor() > 0 && stateOf(childOfEditor()) == 'S'; }));
    std::this_thread::sleep_for(milliseconds(300)); // it is behind its walls
    const pid_t program = childOfEditor();
    ::kill(program, SIGSTOP); // so that it cannot see that nobody listens any longer
    ASSERT_TRUE(within(10, [&] { return stateOf(program) == 'T'; }));
    ::kill(editor, SIGKILL);
    ::waitpid(editor, nullptr, 0);
    EXPECT_TRUE(within(10, [&] { return stateOf(program) == 'X' || stateOf(program) == 'Z'; }));
}

TEST_F(DecoderProcessTest, OneThatDiedWhileItWaitedIsReplaced) {
    const std::string name = Save(Random({20, 10}), "BMP");
    DecoderProcess decoder(kProgram);
    for (const pid_t process : Children()) {
        ::kill(process, SIGKILL);
        siginfo_t information{};
        ::waitid(P_PID, static_cast<id_t>(process), &information, WEXITED | WNOWAIT);
    }
    EXPECT_TRUE(decoder.Decode(name));
}

TEST_F(DecoderProcessTest, WithoutAProgramNothingIsSaidOfTheFile) {
    const std::string name = Save(Random({20, 10}), "BMP");
    for (const std::string& program : {folder_.Path("missing"), FalseDecoder("never-ready")}) {
        DecoderProcess decoder(program);
        EXPECT_EQ(decoder.Decode(name), std::nullopt);
        EXPECT_TRUE(decoder.Walls().standing.empty());
    }
}

TEST_F(DecoderProcessTest, FilesThatAreNoneAreRefused) {
    DecoderProcess decoder(kProgram);
    EXPECT_THROW(decoder.Decode(folder_.Path("missing")), ImagingError);
    EXPECT_THROW(decoder.Decode(folder_.Path("")), ImagingError);
    EXPECT_THROW(decoder.Decode("/dev/zero"), ImagingError);
    EXPECT_THROW(decoder.Decode(folder_.Make("empty", "")), ImagingError);
    EXPECT_TRUE(decoder.Decode(Save(Random({20, 10}), "BMP")));
}

TEST_F(DecoderProcessTest, APictureThatTheMachineHasNoRoomForIsRefusedWithItsSize) {
#ifdef PICTOREL_SANITIZED
    GTEST_SKIP() << "the sanitizer maps more than any limit";
#endif
    const std::string name = Save(test::Constant({6000, 4000}, {9, 8, 7, 255}), "PNG");
    DecoderProcess decoder(kProgram);
    ASSERT_TRUE(decoder.Walls().lacking.size() < 10) << "it has started before the limit";
    rlimit before{};
    ::getrlimit(RLIMIT_AS, &before);
    std::size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit limit = before;
    limit.rlim_cur = pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) + (std::size_t{150} << 20);
    ::setrlimit(RLIMIT_AS, &limit);
    std::string text;
    try {
        decoder.Decode(name);
    } catch (const ImagingError& error) {
        EXPECT_EQ(error.Kind(), ImagingFailure::OutOfMemory);
        text = error.what();
    }
    ::setrlimit(RLIMIT_AS, &before);
    EXPECT_NE(text.find("6000 x 4000 pixels need 240 MB, and 15"), std::string::npos) << text;
    EXPECT_TRUE(decoder.Decode(name));
}

TEST_F(DecoderProcessTest, TellsPeopleItsWalls) {
    EXPECT_EQ(WallsText(DecoderProcess::WallReport{{"system calls", "memory"}, {"network"}}),
              "Decoder walled off by: system calls, memory\nNot on this machine: network\n");
    EXPECT_EQ(WallsText(DecoderProcess::WallReport{{"memory"}, {}}), "Decoder walled off by: memory\n");
    EXPECT_EQ(WallsText(folder_.Path("missing")),
              "Decoder: does not start; only JPEG and PNG files can be opened\n");
    const std::string here = WallsText(kProgram);
    EXPECT_TRUE(here.starts_with("Decoder walled off by: system calls")) << here;
    EXPECT_TRUE(Children().empty());
}

TEST_F(DecoderProcessTest, TellsItsWalls) {
    DecoderProcess decoder(kProgram);
    const auto report = decoder.Walls();
    EXPECT_NE(std::find(report.standing.begin(), report.standing.end(), "system calls"),
              report.standing.end());
    EXPECT_TRUE(decoder.Decode(Save(Random({20, 10}), "BMP"))) << "asking does not use the program up";
}

} // namespace
} // namespace pictorel::test
