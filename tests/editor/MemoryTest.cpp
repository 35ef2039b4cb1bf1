// Memory over a long day's work with small pictures, and after a large one: bounded by what is on the screen.
#include "editor/HeadlessEditor.h"
#include "picture/BufferPool.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <random>

namespace pictorel::test {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;

// Of this process in MiB: pages that it has, without those of files.
std::size_t ResidentMiB() {
    std::ifstream file("/proc/self/statm");
    std::size_t pages = 0;
    std::size_t resident = 0;
    std::size_t shared = 0;
    file >> pages >> resident >> shared;
    return (resident - shared) * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) / kMiB;
}

class Memory : public ::testing::Test, protected HeadlessEditor {
  protected:
    int Chance(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    void Act() {
        static constexpr std::array kEdits{
            Operation::Brightness,   Operation::Invert, Operation::TurnLeft, Operation::Resize,
            Operation::GaussianBlur, Operation::Mosaic, Operation::Rotate,   Operation::Equalize};
        const int action = Chance(20);
        if (action == 0) {
            ASSERT_TRUE(Open(files_[static_cast<std::size_t>(Chance(static_cast<int>(files_.size())))]));
        } else if (action == 1) {
            editor.Files.SaveImageFileAs(kSlot, QString::fromStdString(folder.Path("saved.png")));
        } else if (action < 6) {
            Chance(2) == 0 ? editor.Undo() : editor.Redo();
        } else if (action < 10) {
            editor.ReducedCopy.ShowImagePreview(editor.ReducedCopy.FileName());
            editor.ApplyImageOperation(kSlot, Chance(kOperationCount), true, {Chance(50), 1, 1});
        } else {
            const Operation operation = kEdits[static_cast<std::size_t>(Chance(kEdits.size()))];
            Commit(operation, operation == Operation::Resize
                                  ? Values{200 + Chance(1500), 200 + Chance(1200), 0}
                                  : Values{Chance(40), 1, 1});
            editor.ReducedCopy.UpdatePreviewImage(kSlot);
        }
    }

    std::mt19937 random_{18};
    std::vector<QString> files_{
        MakeFile("a.png", PhotoLike({1200, 900})), MakeFile("b.jpg", PhotoLike({900, 1400})),
        MakeFile("c.bmp", PhotoLike({640, 480})), MakeFile("d.tif", PhotoLike({1700, 300}))};
};

TEST_F(Memory, StaysLevelOverAThousandActions) {
    ASSERT_TRUE(Open(files_[0]));
    std::size_t before = 0;
    for (int i = 1; i <= 1000; ++i) {
        Act();
        EXPECT_LE(PooledBytes(), 32 * kMiB);
        before = i == 100 ? ResidentMiB() : before;
    }
#ifndef PICTOREL_SANITIZED // which keeps what was freed
    EXPECT_LE(ResidentMiB(), before + 20);
#endif
}

TEST_F(Memory, OfALargePictureGoesWithIt) {
    const QString large = MakeFile("large.png", PhotoLike({6000, 4000}));
    ASSERT_TRUE(Open(large));
    ASSERT_TRUE(Commit(Operation::Invert));
    ASSERT_TRUE(Commit(Operation::Rotate, {20}));
    ASSERT_TRUE(Open(files_[2]));
    EXPECT_LE(PooledBytes(), 32 * kMiB);
}

} // namespace
} // namespace pictorel::test
