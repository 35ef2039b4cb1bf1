// What an editor that died with unsaved changes leaves, and what the next one makes of it.
#include "editor/HeadlessEditor.h"
#include "support/CopyWithTimes.h"
#include "support/Pictures.h"
#include "support/ScopedEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace pictorel::test {
namespace {

class RecoveryTest : public ::testing::Test {
  protected:
    // What a dead editor leaves: its folder as it was, under another name and locked by nobody.
    QString LeftBy(HeadlessEditor& editor, const QString& name = QStringLiteral("pictorel-dead01")) const {
        const QDir living(editor.editor.Document.GetTempFolder());
        const QString dead = temporary_.filePath(name);
        EXPECT_TRUE(QDir().mkpath(dead));
        for (const QString& file : living.entryList(QDir::Files)) {
            CopyWithTimes(living.filePath(file), dead + u'/' + file);
        }
        return dead + u'/';
    }

    static void Edit(HeadlessEditor& editor) {
        const QString file = editor.MakeFile("rose.png", PhotoLike({90, 60}));
        ASSERT_TRUE(editor.Open(file));
        ASSERT_TRUE(editor.Commit(Operation::Invert));
        ASSERT_TRUE(editor.Commit(Operation::TurnLeft));
        ASSERT_TRUE(editor.Commit(Operation::Brightness, {40}));
        editor.editor.Undo();
    }

    static bool HasRecord(HeadlessEditor& editor) {
        return QFile::exists(editor.editor.Document.WorkingFile(kRecoveryRecord));
    }

    static std::vector<std::string> Captions(const HeadlessEditor& editor) {
        std::vector<std::string> captions;
        for (const HistoryState& state : editor.States().States()) {
            captions.push_back(state.caption.toStdString());
        }
        return captions;
    }

    static std::optional<RecoveryRecord> OnlyRecord(std::vector<AbandonedFolder>& folders) {
        folders = TakeAbandonedFolders();
        EXPECT_EQ(folders.size(), 1U);
        return folders.empty() ? std::nullopt : ReadRecoveryRecord(folders.front());
    }

    const QTemporaryDir temporary_;
    const ScopedEnvironment variable_{"TMPDIR", temporary_.path()};
};

TEST_F(RecoveryTest, BringsTheWholeHistoryBack) {
    HeadlessEditor dead;
    Edit(dead);
    LeftBy(dead);
    HeadlessEditor next;
    std::vector<AbandonedFolder> folders;
    const auto record = OnlyRecord(folders);
    ASSERT_TRUE(record);
    ASSERT_TRUE(next.editor.Recover(*record));
    folders.front().Remove();
    EXPECT_EQ(Captions(next), Captions(dead));
    EXPECT_EQ(next.States().Active(), 2);
    EXPECT_EQ(next.editor.Document.PictureName, QStringLiteral("rose.png"));
    EXPECT_EQ(next.editor.Document.PictureFolder, dead.editor.Document.PictureFolder);
    EXPECT_TRUE(next.editor.Document.ImageModified(kSlot));
    EXPECT_TRUE(SamePixels(next.Shown(), dead.Shown()));
    EXPECT_EQ(next.editor.Document.ImageWidth(kSlot), 60) << "turned";
    for (const auto& step : {&Editor::Redo, &Editor::Undo, &Editor::Undo, &Editor::Undo}) {
        (next.editor.*step)();
        (dead.editor.*step)();
        EXPECT_TRUE(SamePixels(next.Shown(), dead.Shown()));
    }
    EXPECT_TRUE(next.messages.texts.empty());
    EXPECT_TRUE(HasRecord(next)) << "it may die, too";
    ASSERT_TRUE(next.Commit(Operation::Invert)); // and the history goes on
    EXPECT_EQ(next.States().Count(), 2);
}

TEST_F(RecoveryTest, TransparencyAndMetadataComeBackToo) {
    HeadlessEditor dead;
    PixelArray picture = Speckled({40, 30}, true);
    Metadata details;
    details.dotsPerInchX = 300;
    details.dotsPerInchY = 300;
    picture.SetDetails(details);
    ASSERT_TRUE(dead.Open(dead.MakeFile("clear.png", picture)));
    ASSERT_TRUE(dead.Commit(Operation::FlipVertical));
    LeftBy(dead);
    HeadlessEditor next;
    std::vector<AbandonedFolder> folders;
    const auto record = OnlyRecord(folders);
    ASSERT_TRUE(record);
    ASSERT_TRUE(next.editor.Recover(*record));
    EXPECT_TRUE(next.Shown().HasAlpha());
    EXPECT_EQ(At(next.Shown(), 3, 4)[3], At(dead.Shown(), 3, 4)[3]);
    EXPECT_EQ(next.Shown().Details().dotsPerInchX, 300);
}

TEST_F(RecoveryTest, ThereIsARecordWhileSomethingIsToBeSaved) {
    HeadlessEditor editor;
    ASSERT_TRUE(editor.Open(editor.MakeFile("rose.png", PhotoLike({90, 60}))));
    EXPECT_FALSE(HasRecord(editor)) << "nothing is changed";
    editor.editor.ApplyImageOperation(kSlot, static_cast<std::int32_t>(Operation::Brightness), true, {40});
    EXPECT_FALSE(HasRecord(editor)) << "a preview is no change";
    editor.editor.SetImageModified(false);
    ASSERT_TRUE(editor.Commit(Operation::Invert));
    EXPECT_TRUE(HasRecord(editor));
    ASSERT_TRUE(
        editor.editor.Files.SaveImageFileAs(kSlot, QString::fromStdString(editor.folder.Path("a.png"))));
    editor.editor.SetImageModified(false);
    EXPECT_FALSE(HasRecord(editor)) << "saved";
    ASSERT_TRUE(editor.Commit(Operation::Invert));
    EXPECT_TRUE(HasRecord(editor));
    ASSERT_TRUE(editor.Open(editor.MakeFile("other.png", PhotoLike({50, 60}))));
    EXPECT_FALSE(HasRecord(editor)) << "another picture";
    ASSERT_TRUE(editor.Commit(Operation::Invert));
    editor.editor.ForgetChanges();
    EXPECT_FALSE(HasRecord(editor));
}

struct Damage {
    const char* what;
    void (*apply)(const QString& folder);
    std::vector<std::string> captions; // of what comes back
    int active;
};

void Truncate(const QString& fileName, qint64 bytes) {
    EXPECT_TRUE(QFile::resize(fileName, bytes));
}

TEST_F(RecoveryTest, WhatIsWholeOfADamagedOneComesBack) {
    const Damage damages[] = {
        {"an older state's file has gone",
         [](const QString& folder) { QFile::remove(folder + QStringLiteral("tmpimg_0_2.jpg")); },
         {"Open", "edit", "edit"},
         1},
        {"the active state's file was cut",
         [](const QString& folder) { Truncate(folder + QStringLiteral("tmpimg_0_3.jpg"), 900); },
         {"Open", "edit", "edit"},
         1},
        {"a power cut left zeros",
         [](const QString& folder) {
             QFile file(folder + QStringLiteral("tmpimg_0_4.jpg"));
             EXPECT_TRUE(file.open(QIODevice::ReadWrite));
             const qint64 size = file.size();
             file.write(QByteArray(size, '\0'));
         },
         {"Open", "edit", "edit"},
         2},
        {"its first state is damaged inside",
         [](const QString& folder) {
             QFile file(folder + QStringLiteral("tmpimg_0_3.jpg"));
             EXPECT_TRUE(file.open(QIODevice::ReadWrite));
             const QDateTime time = file.fileTime(QFileDevice::FileModificationTime);
             file.seek(2);
             file.write(QByteArray(file.size() - 4, 'x')); // the ends are those of a JPEG
             file.flush();
             file.setFileTime(time, QFileDevice::FileModificationTime);
         },
         {"Open", "edit", "edit"},
         1},
        {"the record's last lines are cut",
         [](const QString& folder) {
             const QString record = folder + kRecoveryRecord;
             Truncate(record, QFile(record).size() - 20);
         },
         {"Open", "edit", "edit"},
         2},
    };
    for (const Damage& damage : damages) {
        SCOPED_TRACE(damage.what);
        HeadlessEditor dead;
        Edit(dead);
        damage.apply(LeftBy(dead));
        HeadlessEditor next;
        std::vector<AbandonedFolder> folders;
        const auto record = OnlyRecord(folders);
        ASSERT_TRUE(record);
        EXPECT_TRUE(next.editor.Recover(*record));
        EXPECT_EQ(Captions(next), damage.captions);
        EXPECT_EQ(next.States().Active(), damage.active);
        EXPECT_FALSE(next.Shown().IsEmpty());
        folders.front().Remove();
    }
}

// The record is written when an edit has ended: a kill before that leaves files under the names that the
// record's states had.
TEST_F(RecoveryTest, ARowNeverHoldsAnotherEditsPicture) {
    HeadlessEditor dead;
    Edit(dead);
    const QString folder = LeftBy(dead);
    const auto at = [&](int number) { return folder + QStringLiteral("tmpimg_0_%1.jpg").arg(number); };
    const QString secondFile = dead.editor.Document.WorkingFile(QStringLiteral("tmpimg_0_2.jpg"));
    const PixelArray second = dead.Read(secondFile);
    QFile::remove(at(1)); // pushed out, and the others take the names before theirs
    for (int number = 2; number <= 4; ++number) {
        ASSERT_TRUE(QFile::rename(at(number), at(number - 1)));
    }
    CopyWithTimes(dead.MakeFile("new.jpg", PhotoLike({33, 44})), at(4)); // of the edit that was at work
    HeadlessEditor next;
    std::vector<AbandonedFolder> folders;
    const auto record = OnlyRecord(folders);
    ASSERT_TRUE(record);
    ASSERT_TRUE(next.editor.Recover(*record));
    EXPECT_EQ(next.States().Count(), 3);
    EXPECT_EQ(next.States().Active(), 1);
    next.editor.Undo();
    EXPECT_TRUE(SamePixels(next.Shown(), second));
}

TEST_F(RecoveryTest, WhatIsNotWholeAtAllIsNoRecord) {
    HeadlessEditor dead;
    Edit(dead);
    const QString folder = LeftBy(dead);
    for (int i = 1; i <= 4; ++i) {
        Truncate(folder + QStringLiteral("tmpimg_0_%1.jpg").arg(i), 0);
    }
    std::vector<AbandonedFolder> folders;
    EXPECT_FALSE(OnlyRecord(folders));
}

TEST_F(RecoveryTest, NothingUnreadableTakesThePlaceOfWhatIsOpen) {
    HeadlessEditor editor;
    Edit(editor);
    const PixelArray before = editor.Shown();
    RecoveryRecord record;
    record.states.push_back({{QStringLiteral("Open"), temporary_.filePath(QStringLiteral("none.jpg"))}});
    record.active = 0;
    EXPECT_FALSE(editor.editor.Recover(record));
    EXPECT_TRUE(editor.Shown().SharesPixelsWith(before));
    EXPECT_EQ(editor.States().Count(), 4);
}

// The record lies in a folder that only its user can write to, but a disk can make anything of it.
TEST_F(RecoveryTest, NoBytesOfARecordLeadOutOfItsFolder) {
    for (const char* const line :
         {"", "\n\n\n", "{}", "[1,2]", "{\"file\":\"/etc/passwd\"}", "{\"name\":\"x\"}", "{\"time\":"}) {
        EXPECT_FALSE(RecoveryRecord::Read(line)) << line;
    }
    QByteArray many;
    for (int i = 0; i < 40; ++i) {
        many += "{\"time\":\"7\",\"size\":\"9\",\"active\":true}\n";
    }
    const auto record = RecoveryRecord::Read(many);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->states.size(), 15U);
    EXPECT_LT(record->active, 15);
}

TEST_F(RecoveryTest, ALivingEditorIsLeftAlone) {
    HeadlessEditor living;
    Edit(living);
    EXPECT_TRUE(HasRecord(living));
    EXPECT_TRUE(TakeAbandonedFolders().empty());
}

TEST_F(RecoveryTest, TheLatestComesFirstAndNobodyTakesItTwice) {
    HeadlessEditor dead;
    Edit(dead);
    const QString older = LeftBy(dead, QStringLiteral("pictorel-dead01"));
    const QString newer = LeftBy(dead, QStringLiteral("pictorel-dead02"));
    QFile record(older + kRecoveryRecord);
    ASSERT_TRUE(record.open(QIODevice::ReadWrite));
    ASSERT_TRUE(
        record.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
    record.close();
    {
        const std::vector<AbandonedFolder> folders = TakeAbandonedFolders();
        ASSERT_EQ(folders.size(), 2U);
        EXPECT_EQ(folders.front().Path(QString()), newer);
        EXPECT_TRUE(TakeAbandonedFolders().empty()) << "another editor that starts meanwhile";
    }
    { const WorkingFolder next; } // whose start sweeps what is of no use
    EXPECT_EQ(TakeAbandonedFolders().size(), 2U) << "not answered: offered again";
}

} // namespace
} // namespace pictorel::test
