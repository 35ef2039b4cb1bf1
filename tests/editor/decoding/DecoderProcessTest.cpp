// Decoding in a program of its own: the same pictures as inside, and an editor that outlives whatever that
// program does.
#include "editor/TemporaryFolder.h"
#include "editor/decoding/DecoderProcess.h"
#include "picture/ImagingError.h"
#include "picture/MadeDetails.h"
#include "picture/engine/TestPictures.h"
#include "picture/metafile/Metafile.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace pictorel::test {
namespace {

namespace fs = std::filesystem;
using engine::test::Random;
using engine::test::SamePixels;
using std::chrono::milliseconds;

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
        const auto picture = decoder.Decode(fileName);
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
        const std::string name = folder_.Path(manner);
        fs::create_symlink(PICTOREL_FALSE_DECODER, name);
        return name;
    }

    const TemporaryFolder folder_;
};

TEST_F(DecoderProcessTest, DecodesEveryFileOfTheCorpusAsInside) {
    DecoderProcess decoder(kProgram);
    int opened = 0;
    int refused = 0;
    for (const auto& entry : fs::recursive_directory_iterator(PICTOREL_CORPUS)) {
        if (!entry.is_regular_file()) {
            continue;
        }
        const std::string name = entry.path().string();
        const auto inside = Inside(name);
        const auto through = Through(decoder, name);
        ASSERT_EQ(through.has_value(), inside.has_value()) << name;
        ++(inside ? opened : refused);
        if (inside) {
            EXPECT_TRUE(SamePicture(*through, *inside)) << name;
        }
    }
    EXPECT_GT(opened, 100);
    EXPECT_GT(refused, 20);
}

TEST_F(DecoderProcessTest, LargePicturesStayValuesAfterTheProgramHasGone) {
    PixelArray made = Random({1300, 900}, engine::test::Alpha::Random);
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
    for (const char* const manner :
         {"dies", "leaves", "too-short", "too-long", "other-mark", "other-outcome", "always-fonts",
          "no-pixels", "vast", "negative", "fewer-bytes", "behind-the-end", "before-the-beginning",
          "beside-a-page", "endless-details", "details-of-negative-length", "no-resolution",
          "shrinks-the-memory", "seals-the-memory"}) {
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
    const std::string slow = Save(Random({2500, 1800}), "J2K");
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
    EXPECT_EQ(picture->Width(), 2500);
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

TEST_F(DecoderProcessTest, TellsItsWalls) {
    DecoderProcess decoder(kProgram);
    const auto report = decoder.Walls();
    EXPECT_NE(std::find(report.standing.begin(), report.standing.end(), "system calls"),
              report.standing.end());
    EXPECT_TRUE(decoder.Decode(Save(Random({20, 10}), "BMP"))) << "asking does not use the program up";
}

} // namespace
} // namespace pictorel::test
