// Saves whose process is killed: the old file or the new one, whole, and what is left beside it goes.
#include "editor/AtomicFile.h"
#include "editor/TemporaryFolder.h"
#include "picture/codecs/Codec.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <random>

namespace pictorel::test {
namespace {

namespace fs = std::filesystem;

codecs::ByteBuffer FileOf(const PixelArray& picture) {
    return codecs::FindCodecByExtension("BMP")->write(picture, {});
}

std::string Text(const codecs::ByteBuffer& bytes) {
    return {bytes.begin(), bytes.end()};
}

// Runs `work` in a process of its own until it is over or killed.
template <typename Work>
pid_t Start(const Work& work) {
    const pid_t process = ::fork();
    if (process == 0) {
        work();
        std::_Exit(EXIT_SUCCESS);
    }
    return process;
}

class KilledSave : public ::testing::Test {
  protected:
    // What saves leave beside the picture.
    std::size_t Leftovers() const { return folder_.Names().size() - 1; }

    const TemporaryFolder folder_;
    const codecs::ByteBuffer small_ = FileOf(Random({20, 10}));
};

TEST_F(KilledSave, LeavesTheOldFileOrTheNewOne) {
    constexpr int kKills = 200;
    const codecs::ByteBuffer first = FileOf(Random({2000, 1500}, Alpha::None, 1));
    const codecs::ByteBuffer second = FileOf(Random({1500, 2001}, Alpha::None, 2));
    const std::string name = folder_.Make("picture.bmp", Text(first));

    const auto start = std::chrono::steady_clock::now();
    ReplaceFile(name, first, Durability::Lasting);
    const auto whole =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);

    std::mt19937 random(18);
    int leftovers = 0;
    int changes = 0;
    for (int i = 0; i < kKills; ++i) {
        const codecs::ByteBuffer& next = i % 2 == 0 ? second : first;
        const codecs::ByteBuffer& other = i % 2 == 0 ? first : second;
        const pid_t editor = Start([&] { ReplaceFile(name, next, Durability::Lasting); });
        ::usleep(static_cast<useconds_t>(std::uniform_int_distribution<long>(0, whole.count() * 2)(random)));
        ::kill(editor, SIGKILL);
        ::waitpid(editor, nullptr, 0);
        const auto content = ReadWholeFile(name);
        ASSERT_TRUE(content == next || content == other) << "after kill " << i;
        changes += content == next ? 1 : 0;
        leftovers += Leftovers() > 0 ? 1 : 0;
    }
    EXPECT_GT(leftovers, 0) << "no save was ever hit half-way";
    EXPECT_GT(changes, 0) << "no save was ever over in time";
    ReplaceFile(name, small_, Durability::Lasting);
    EXPECT_EQ(Leftovers(), 0U);
}

TEST_F(KilledSave, IsToldFromOneThatIsUnderWay) {
    const std::string name = folder_.Make("picture.bmp", "old");
    int begun[2];
    int goOn[2];
    ASSERT_EQ(::pipe(begun) | ::pipe(goOn), 0);
    const pid_t slow = Start([&] {
        ReplaceFile(
            folder_.Path("slow.bmp"),
            [&](const codecs::ByteSink& sink) {
                sink(small_);
                char letter = 'b';
                const bool told = ::write(begun[1], &letter, 1) == 1 && ::read(goOn[0], &letter, 1) == 1;
                sink(told ? codecs::ByteView(small_) : codecs::ByteView());
            },
            Durability::Lasting);
    });
    char letter = 0;
    ASSERT_EQ(::read(begun[0], &letter, 1), 1);
    ASSERT_EQ(Leftovers(), 1U);
    ReplaceFile(name, small_, Durability::Lasting); // sweeps
    EXPECT_EQ(Leftovers(), 1U) << "another editor is writing it";
    ASSERT_EQ(::write(goOn[1], &letter, 1), 1);
    int status = -1;
    ::waitpid(slow, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(ContentOf(folder_.Path("slow.bmp")), Text(small_) + Text(small_));
}

TEST_F(KilledSave, OnlyLeftoversAreSwept) {
    const std::string name = folder_.Make("picture.bmp", "old");
    const std::string longName = ".pictorel-save-1234567890123-abcdef";
    for (const std::string& other :
         {std::string(".pictorel-save-"), std::string(".pictorel-save-notes.txt"),
          std::string(".pictorel-save-12-abcdef.bmp"), std::string("pictorel-save-12-abcdef"), longName}) {
        folder_.Make(other, "a person's");
    }
    fs::create_directory(folder_.Path(".pictorel-save-12-folder"));
    fs::create_symlink("picture.bmp", folder_.Path(".pictorel-save-12-linked"));
    const auto before = folder_.Names();
    folder_.Make(".pictorel-save-999999999-abc123", "half a picture");
    ReplaceFile(name, small_, Durability::Working);
    EXPECT_EQ(folder_.Names().size(), before.size() + 1)
        << "working files are many, and their folder private";
    ReplaceFile(name, small_, Durability::Lasting);
    EXPECT_EQ(folder_.Names(), before);
}

} // namespace
} // namespace pictorel::test
