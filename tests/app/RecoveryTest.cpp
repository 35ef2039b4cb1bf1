// The question at the start about what another editor left, and what each answer does.
#include "app/EditorWindow.h"
#include "support/CopyWithTimes.h"
#include "support/ScopedEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class RecoveryAtStart : public testing::Test {
  protected:
    // A history of three rows whose second is active, left by an editor that was killed.
    void LeaveAHistory(const QString& name = QStringLiteral("pictorel-dead01")) {
        EditorWindow editor;
        editor.Open(editor.MakeFile("rose.bmp", MakeScene(80, 60)));
        editor.Click("Cmd_Tab", 2);
        editor.Click("Cmd_RotateLeft");
        captions_ = editor.HistoryCaptions();
        editor.PickHistoryRow(1);
        shown_ = editor.Shown();
        const QDir living(editor.Document().GetTempFolder());
        folder_ = temporary_.filePath(name);
        ASSERT_TRUE(QDir().mkpath(folder_));
        for (const QString& file : living.entryList(QDir::Files)) {
            test::CopyWithTimes(living.filePath(file), folder_ + u'/' + file);
        }
    }

    const QTemporaryDir temporary_;
    const ScopedEnvironment variable_{"TMPDIR", temporary_.path()};
    QString folder_;
    QStringList captions_;
    PixelArray shown_;
};

TEST_F(RecoveryAtStart, YesBringsItBack) {
    LeaveAHistory();
    EditorWindow editor({}, [](Person& person) { person.WillPress(QMessageBox::Yes); });
    ASSERT_TRUE(editor.WaitUntil([&] { return !editor.Shown().IsEmpty(); }));
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_TRUE(editor.person.Messages().front().text.startsWith("Recover \"rose.bmp\" ?"));
    EXPECT_EQ(editor.HistoryCaptions(), captions_);
    EXPECT_EQ(editor.ActiveRow(), 1);
    EXPECT_EQ(LargestDifference(editor.Shown(), shown_), 0);
    EXPECT_TRUE(editor.Document().ImageModified(0));
    for (const int button : {1, 2, 3, 4}) { // Save, Undo, Redo, Print
        EXPECT_TRUE(editor.Get("Cmd_Panel", button).IsEnabled()) << button;
    }
    EXPECT_TRUE(editor.WaitUntil([&] { return !QFile::exists(folder_); }));
    editor.Click("Cmd_Panel", 3);
    EXPECT_EQ(editor.Shown().Width(), 60) << "the turn that could be redone";
}

TEST_F(RecoveryAtStart, NoDiscardsIt) {
    LeaveAHistory();
    EditorWindow editor({}, [](Person& person) { person.WillPress(QMessageBox::No); });
    EXPECT_TRUE(editor.WaitUntil([&] { return !QFile::exists(folder_); }));
    EXPECT_TRUE(editor.Shown().IsEmpty());
    EXPECT_EQ(editor.History().Count(), 0);
}

TEST_F(RecoveryAtStart, WhoOnlyClosesTheQuestionIsAskedAgain) {
    LeaveAHistory(QStringLiteral("pictorel-dead01"));
    LeaveAHistory(QStringLiteral("pictorel-dead02"));
    {
        EditorWindow editor;
        EXPECT_TRUE(editor.WaitUntil([&] { return !editor.person.Messages().empty(); }));
        EXPECT_TRUE(QFile::exists(folder_));
        EXPECT_TRUE(editor.Shown().IsEmpty());
    }
    EditorWindow editor({}, [](Person& person) {
        person.WillPress(QMessageBox::No); // one after the other
        person.WillPress(QMessageBox::No);
    });
    EXPECT_TRUE(editor.WaitUntil([&] { return editor.person.Messages().size() == 2; }));
    EXPECT_TRUE(editor.WaitUntil([&] { return !QFile::exists(folder_); }));
}

} // namespace
} // namespace pictorel
