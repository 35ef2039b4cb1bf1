// Thousands of random commands against a plain model: which states there are, which one is active, what each
// working file holds, the changed mark, the sizes.
#include "editor/HeadlessEditor.h"
#include "support/Pictures.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

#include <random>

namespace pictorel::test {
namespace {

using test::Random;

#ifdef PICTOREL_SANITIZED
constexpr int kSteps = 3000; // each takes several times as long
#else
constexpr int kSteps = 20000;
#endif
constexpr int kMostStates = 15;
constexpr int kLossOfWorkingFile = 2; // levels, by one encoding

struct ModelState {
    std::string caption;
    PixelArray picture; // as it was committed
};

class DayOfWork : public ::testing::Test, protected HeadlessEditor {
  protected:
    void Step() {
        switch (Chance(12)) {
            case 0:
                return OpenAnother();
            case 1:
                return OpenWhatIsNone();
            case 2:
                return Save();
            case 3:
            case 4:
                return GoTo(active_ - 1, [this] { editor.Undo(); });
            case 5:
                return GoTo(active_ + 1, [this] { editor.Redo(); });
            case 6:
                return Pick();
            case 7:
                return Preview();
            default:
                return Edit();
        }
    }

    void OpenAnother() {
        const PixelArray picture = files_[Chance(static_cast<int>(files_.size()))];
        ASSERT_TRUE(Open(MakeFile("open.bmp", picture)));
        states_ = {{"Open", picture}};
        active_ = 0;
        changed_ = false;
    }

    void OpenWhatIsNone() { EXPECT_FALSE(Open(none_)); }

    void Save() {
        const QString file = QString::fromStdString(folder.Path("saved.png"));
        ASSERT_TRUE(editor.Files.SaveImageFileAs(kSlot, file));
        editor.SetImageModified(false);
        changed_ = false;
        EXPECT_EQ(LargestDifference(Read(file), Shown()), 0);
    }

    void GoTo(int row, const std::function<void()>& command) {
        command();
        if (row >= 0 && row < static_cast<int>(states_.size())) {
            active_ = row;
        }
    }

    void Pick() {
        const int row = Chance(static_cast<int>(states_.size()));
        ASSERT_TRUE(editor.History.RestoreHistoryEntry(row));
        editor.ReducedCopy.UpdatePreviewImage(kSlot);
        active_ = row;
    }

    void Preview() {
        const bool shown = editor.ReducedCopy.ShowImagePreview(editor.ReducedCopy.FileName());
        EXPECT_TRUE(shown);
        editor.ApplyImageOperation(kSlot, Chance(kOperationCount), true, SomeValues());
        changed_ = true;
    }

    void Edit() {
        static constexpr std::array kEdits{
            Operation::Brightness,     Operation::Invert,       Operation::Contrast,
            Operation::TurnLeft,       Operation::TurnRight,    Operation::Resize,
            Operation::FlipHorizontal, Operation::FlipVertical, Operation::Mosaic,
            Operation::Posterize,      Operation::Rotate,       Operation::MaximalOrMinimal};
        const Operation operation = kEdits[static_cast<std::size_t>(Chance(kEdits.size()))];
        const Values values = operation == Operation::Resize ? Values{2 + Chance(40), 2 + Chance(40), 0}
                                                             : Values{2 + Chance(60), Chance(3) - 1, 0};
        const PixelArray wanted =
            RowOf(operation).apply(editor.Document.ImagePixels, values, editor.Document.BackgroundColour);
        const std::string caption = std::string(RowOf(operation).caption);
        ASSERT_TRUE(editor.Commit(QString::fromStdString(caption), operation, values));
        states_.resize(static_cast<std::size_t>(active_) + 1);
        states_.push_back({caption, wanted});
        if (states_.size() > kMostStates) {
            states_.erase(states_.begin());
        }
        active_ = static_cast<int>(states_.size()) - 1;
        changed_ = true;
        EXPECT_EQ(LargestDifference(Shown(), wanted), 0);
    }

    void Compare() {
        ASSERT_EQ(States().Count(), static_cast<int>(states_.size()));
        ASSERT_EQ(States().Active(), active_);
        const PixelArray& now = states_[static_cast<std::size_t>(active_)].picture;
        ASSERT_LE(LargestDifference(Shown(), now), kLossOfWorkingFile);
        ASSERT_TRUE(editor.Document.ImagePixels.SharesPixelsWith(Shown()));
        ASSERT_EQ(editor.Document.ImageWidth(kSlot), now.Width());
        ASSERT_EQ(editor.Document.ImageHeight(kSlot), now.Height());
        ASSERT_EQ(editor.Document.ImageModified(kSlot), changed_);
        ASSERT_TRUE(editor.Document.PictureName == "open.bmp" || editor.Document.PictureName == "saved.png");
        for (int row = 0; row < States().Count(); ++row) {
            ASSERT_EQ(States().State(row).caption.toStdString(),
                      states_[static_cast<std::size_t>(row)].caption);
            ASSERT_EQ(QFileInfo(States().State(row).imageFile).fileName(),
                      QStringLiteral("tmpimg_0_%1.jpg").arg(row + 1));
        }
        ASSERT_EQ(QDir(editor.Document.GetTempFolder()).entryList({"tmpimg_*"}).size(), States().Count());
    }

    // Every working file, read from the disk; after that the editor knows nothing by heart any more.
    void CompareFiles() {
        for (int row = 0; row < States().Count(); ++row) {
            ASSERT_LE(LargestDifference(Read(States().State(row).imageFile),
                                        states_[static_cast<std::size_t>(row)].picture),
                      kLossOfWorkingFile)
                << "row " << row;
        }
    }

    int Chance(std::size_t count) { return static_cast<int>(random_() % count); }
    Values SomeValues() { return {Chance(100) - 30, Chance(3) - 1, Chance(10)}; }

    std::mt19937 random_{20261123};
    std::vector<PixelArray> files_{Random({24, 16}), Random({7, 31}, test::Alpha::None, 2),
                                   Random({2, 2}, test::Alpha::None, 3)};
    QString none_ = QString::fromStdString(folder.Make("none.jpg", "no picture"));
    std::vector<ModelState> states_;
    int active_ = -1;
    bool changed_ = false;
};

TEST_F(DayOfWork, GoesAsThePlainModelSays) {
    OpenAnother();
    for (int step = 0; step < kSteps && !HasFatalFailure(); ++step) {
        SCOPED_TRACE(step);
        Step();
        Compare();
        if (step % 50 == 0) {
            CompareFiles();
        }
    }
    const auto isKnown = [](const std::string& text) { return text == "Unsupported file format!"; };
    EXPECT_TRUE(std::all_of(messages.texts.begin(), messages.texts.end(), isKnown));
}

} // namespace
} // namespace pictorel::test
