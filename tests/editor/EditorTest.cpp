// The editor without a window: loading, committing, going back, and what failures leave.
#include "editor/HeadlessEditor.h"
#include "picture/engine/Geometry.h"
#include "picture/engine/PointOperations.h"
#include "support/Pictures.h"
#include "support/ScopedEnvironment.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>

namespace pictorel::test {
namespace {

using test::Random;
using test::SamePixels;

class EditorTest : public ::testing::Test, protected HeadlessEditor {
  protected:
    EditorTest() { Open(MakeFile("first.png", picture_)); }

    void RemoveWorkingFile(int number) {
        QFile::remove(editor.Document.WorkingFile(QStringLiteral("tmpimg_0_%1.jpg").arg(number)));
    }

    PixelArray picture_ = Random({60, 40});
};

TEST_F(EditorTest, ARefusedFileChangesNothing) {
    Commit(Operation::Invert);
    const PixelArray shown = Shown();
    const QString sliver = MakeFile("sliver.png", Random({1, 90}));
    const QString text = QString::fromStdString(folder.Make("text.jpg", "no picture"));
    for (const QString& file : {sliver, text, QStringLiteral("/nowhere/at.all")}) {
        EXPECT_FALSE(Open(file));
        EXPECT_EQ(messages.texts.back(), "Unsupported file format!");
        EXPECT_TRUE(Shown().SharesPixelsWith(shown));
        EXPECT_EQ(editor.Document.ImageWidth(kSlot), 60);
        EXPECT_EQ(editor.Document.ImageHeight(kSlot), 40);
        EXPECT_EQ(States().Count(), 2);
        EXPECT_TRUE(editor.Document.ImageModified(kSlot));
        EXPECT_EQ(editor.Document.PictureName, "first.png");
    }
}

TEST_F(EditorTest, ATemporaryFolderTooDeepKeepsTheHistoryAndLeavesTheCurrentFolderAlone) {
    const QString before = QDir::currentPath();
    const TemporaryFolder current;
    const std::string root =
        current.Path(std::string(100, 'a') + '/' + std::string(100, 'b') + '/' + std::string(60, 'c'));
    ASSERT_TRUE(QDir().mkpath(QString::fromStdString(root)));
    ASSERT_TRUE(QDir::setCurrent(QString::fromStdString(current.Path("."))));
    {
        const ScopedEnvironment deep("TMPDIR", QString::fromStdString(root));
        HeadlessEditor other;
        ASSERT_TRUE(other.Open(QString::fromStdString(folder.Path("first.png"))));
        ASSERT_TRUE(other.Commit(Operation::Invert));
        EXPECT_EQ(current.Names().size(), 1U) << "only the deep folder itself";
        other.editor.Undo();
        EXPECT_EQ(other.States().Active(), 0);
        EXPECT_LE(LargestDifference(other.Shown(), picture_), 2);
    }
    EXPECT_EQ(current.Names().size(), 1U);
    QDir::setCurrent(before);
}

TEST_F(EditorTest, ADamagedPictureSaysSoUntilTheNextEdit) {
    const QString file = MakeFile("damaged.bmp", picture_);
    std::filesystem::resize_file(file.toStdString(), 54 + 60 * 3 * 10); // ten rows of forty
    ASSERT_TRUE(Open(file));
    EXPECT_EQ(DamageText(Shown().PartShown()), "damaged: 25 % shown");
    ASSERT_TRUE(Commit(Operation::Invert));
    EXPECT_EQ(DamageText(Shown().PartShown()), "");
    ASSERT_TRUE(Open(QString::fromStdString(folder.Path("first.png"))));
    EXPECT_EQ(DamageText(Shown().PartShown()), "");
}

TEST_F(EditorTest, SavingOverADamagedOriginalAsks) {
    const QString file = MakeFile("damaged.bmp", picture_);
    std::filesystem::resize_file(file.toStdString(), 54 + 60 * 3 * 10);
    const std::string damaged = ContentOf(file.toStdString());
    ASSERT_TRUE(Open(file));
    ASSERT_TRUE(Commit(Operation::Invert));
    for (const MessageAnswer answer : {MessageAnswer::Cancel, MessageAnswer::No}) {
        messages.answer = answer;
        EXPECT_FALSE(editor.Files.SaveImageFileAs(kSlot, file));
        EXPECT_NE(messages.texts.back().find("damaged.bmp is damaged"), std::string::npos);
    }
    EXPECT_EQ(ContentOf(file.toStdString()), damaged);
    const std::size_t asked = messages.texts.size();
    EXPECT_TRUE(editor.Files.SaveImageFileAs(kSlot, QString::fromStdString(folder.Path("other.bmp"))));
    EXPECT_EQ(messages.texts.size(), asked) << "elsewhere nothing is lost";
    messages.answer = MessageAnswer::Yes;
    EXPECT_TRUE(editor.Files.SaveImageFileAs(kSlot, file));
    EXPECT_EQ(messages.texts.size(), asked + 1);
    EXPECT_TRUE(editor.Files.SaveImageFileAs(kSlot, file));
    EXPECT_EQ(messages.texts.size(), asked + 1) << "it is whole now";
}

TEST_F(EditorTest, APictureBeyondTheLimitsIsToldItsSizeAndTheLimit) {
    PixelArray line = Random({30000, 2});
    std::string bytes = ContentOf(MakeFile("line.bmp", line).toStdString());
    bytes.replace(18, 4, std::string("\xFF\xFF\0\0", 4)); // wide
    bytes.replace(22, 4, std::string("\1\0\0\0", 4));
    EXPECT_FALSE(Open(QString::fromStdString(folder.Make("vast.bmp", bytes))));
    EXPECT_EQ(
        messages.texts.back(),
        "Unsupported file format!\n\nA picture of 65535 x 1 pixels is larger than this editor can open: "
        "32767 pixels a side and a thousand million in all.");
}

TEST_F(EditorTest, AnEditIsAppliedRecordedAndMarked) {
    EXPECT_FALSE(editor.Document.ImageModified(kSlot));
    EXPECT_FALSE(editor.Document.PreviewOutdated);
    ASSERT_TRUE(Commit(Operation::TurnLeft));
    EXPECT_TRUE(SamePixels(Shown(), engine::QuarterTurnLeft(picture_)));
    EXPECT_TRUE(editor.Document.ImagePixels.SharesPixelsWith(Shown()));
    EXPECT_EQ(editor.Document.ImageWidth(kSlot), 40);
    EXPECT_TRUE(editor.Document.ImageModified(kSlot));
    EXPECT_TRUE(editor.Document.PreviewOutdated);
    EXPECT_EQ(States().Active(), 1);
    editor.Undo();
    EXPECT_EQ(editor.Document.ImageWidth(kSlot), 60);
    EXPECT_TRUE(editor.Document.ImageModified(kSlot)) << "going back is no saving";
}

TEST_F(EditorTest, AnOperationThatFailsChangesNothingAndSaysSo) {
    const PixelArray shown = Shown();
    EXPECT_FALSE(Commit(Operation::Resize, {30000, 30000000, 0}));
    EXPECT_EQ(messages.texts.size(), 1U);
    EXPECT_TRUE(Shown().SharesPixelsWith(shown));
    EXPECT_EQ(States().Count(), 1);
    EXPECT_FALSE(editor.Document.ImageModified(kSlot));
}

TEST_F(EditorTest, CallsNeverPileUp) {
    editor.ApplyImageOperation(kSlot, static_cast<int>(Operation::Brightness), false, {100});
    editor.ApplyImageOperation(kSlot, static_cast<int>(Operation::Brightness), false, {10});
    EXPECT_TRUE(SamePixels(Shown(), engine::Brightness(picture_, 10)));
    for (const int code : {-1, 36, 4711}) {
        EXPECT_TRUE(editor.ApplyImageOperation(kSlot, code, false, {}));
        EXPECT_TRUE(SamePixels(Shown(), picture_));
    }
    EXPECT_FALSE(editor.ApplyImageOperation(kSlot, static_cast<int>(Operation::Threshold), false, {300}));
    EXPECT_TRUE(SamePixels(Shown(), picture_));
    EXPECT_TRUE(editor.Document.ImageModified(kSlot));
    EXPECT_FALSE(editor.ApplyImageOperation(101, 0, false, {})) << "there is no such slot";
}

TEST_F(EditorTest, APreviewNeverTakesThePicturesPlace) {
    editor.ReducedCopy.ShowImagePreview(editor.ReducedCopy.FileName());
    editor.ApplyImageOperation(kSlot, static_cast<int>(Operation::Invert), true, {});
    EXPECT_TRUE(SamePixels(Shown(), picture_));
    EXPECT_EQ(editor.Document.PreviewPixels.Width(), 250);
    EXPECT_EQ(States().Count(), 1);
}

TEST_F(EditorTest, AStateWhoseFileHasGoneIsSaidAndNotOfferedAgain) {
    Commit(Operation::Invert);
    Commit(Operation::FlipVertical);
    const PixelArray shown = Shown();
    RemoveWorkingFile(2);
    editor.Undo();
    EXPECT_EQ(messages.texts, std::vector<std::string>{"Unsupported file format!"});
    EXPECT_TRUE(Shown().SharesPixelsWith(shown));
    EXPECT_EQ(States().Active(), 2) << "the row of what is on the screen";
    EXPECT_EQ(States().UndoRow(), 0);
    editor.Undo();
    EXPECT_EQ(States().Active(), 0);
    EXPECT_EQ(messages.texts.size(), 1U);
    EXPECT_EQ(States().RedoRow(), 2);
}

TEST_F(EditorTest, AStateThatCannotBeWrittenIsSaidAndNotOffered) {
    // A folder in the working file's place cannot be replaced by a file.
    ASSERT_TRUE(QDir().mkpath(editor.Document.WorkingFile("tmpimg_0_2.jpg")));
    EXPECT_FALSE(Commit(Operation::Invert));
    ASSERT_EQ(messages.texts.size(), 1U);
    EXPECT_NE(messages.texts.front().find("tmpimg_0_2.jpg"), std::string::npos);
    EXPECT_TRUE(SamePixels(Shown(), engine::Invert(picture_))) << "the edit itself is there";
    Commit(Operation::FlipVertical);
    EXPECT_EQ(States().UndoRow(), 0);
}

TEST_F(EditorTest, WhatIsMissingOfTheOldHistoryStopsNoOpen) {
    Commit(Operation::Invert);
    Commit(Operation::Invert);
    RemoveWorkingFile(1);
    RemoveWorkingFile(3);
    ASSERT_TRUE(Open(MakeFile("next.png", Random({9, 9}))));
    EXPECT_EQ(States().Count(), 1);
    EXPECT_EQ(QDir(editor.Document.GetTempFolder()).entryList({"tmpimg_*"}), QStringList{"tmpimg_0_1.jpg"});
    EXPECT_TRUE(messages.texts.empty());
}

TEST_F(EditorTest, ACommandIsBusyToItsEnd) {
    class Watch : public EditorObserver {
      public:
        explicit Watch(const Editor& editor) : editor_(editor) {}
        void PaintPending() override { sawIdle = sawIdle || !editor_.IsBusy(); }
        void HistoryChanged() override { sawIdle = sawIdle || !editor_.IsBusy(); }
        bool sawIdle = false;

      private:
        const Editor& editor_;
    } watch(editor);
    editor.SetObserver(&watch);
    Commit(Operation::Invert);
    editor.Undo();
    editor.SetObserver(nullptr);
    EXPECT_FALSE(watch.sawIdle);
    EXPECT_FALSE(editor.IsBusy());
}

TEST_F(EditorTest, TheZoomedInPartIsWhatThePreviewStartsFrom) {
    class Zoomed : public EditorObserver {
      public:
        ShownPart PartShown(PictureSlot /*slot*/) const override { return {2.0, 10, 5, 20, 16}; }
    } zoomed;
    editor.SetObserver(&zoomed);
    editor.ReducedCopy.UpdatePreviewImage(kSlot);
    ASSERT_TRUE(editor.ReducedCopy.ShowImagePreview(editor.ReducedCopy.FileName()));
    editor.SetObserver(nullptr);
    EXPECT_EQ(editor.Document.PreviewPixels.Width(), 250);
    EXPECT_EQ(editor.Document.PreviewPixels.Height(), 200);
    EXPECT_DOUBLE_EQ(editor.Document.PreviewPixels.Reduction(), 12.5);
    EXPECT_FALSE(QFile::exists(editor.Document.WorkingFile("tmp_preview0.jpg")));
}

} // namespace
} // namespace pictorel::test
