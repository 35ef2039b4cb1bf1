// The roads out of the editor: signals, closing at any moment, and the end of the session.
#include "app/EditorWindow.h"
#include "platform/PumpEvents.h"
#include "platform/TerminationSignals.h"
#include "programs/scanner/TestScanner.h"

#include <QApplication>
#include <QDir>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>

namespace pictorel {
namespace {

constexpr int kInvert = 2; // of Cmd_Tab
constexpr int kTooLong = 15000;

// Runs the event loop as the process does, with `during` in it; true where the editor ended the loop.
bool RunLoop(EditorWindow& editor, const std::function<void()>& during, int milliseconds = kTooLong) {
    TerminationSignals signalsToLoop;
    signalsToLoop.SetHandler([&editor] { editor.Window().End().RequestEnd(); });
    constexpr int kTimeIsUp = 99;
    QTimer::singleShot(milliseconds, &editor.Window(), [] { QCoreApplication::exit(kTimeIsUp); });
    QTimer::singleShot(0, &editor.Window(), during);
    return QCoreApplication::exec() != kTimeIsUp;
}

void OpenAndChange(EditorWindow& editor) {
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    editor.Click("Cmd_Tab", kInvert);
}

QStringList LeftFiles(EditorWindow& editor) {
    return QDir(editor.Document().GetTempFolder()).entryList({"tmp*"}, QDir::Files);
}

TEST(ShutDown, EverySignalAsksOnceAndDoesAsAnswered) {
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
        EditorWindow editor;
        OpenAndChange(editor);
        editor.person.WillPress(QMessageBox::Cancel);
        EXPECT_FALSE(RunLoop(
            editor, [=] { ::raise(number); }, 500));
        EXPECT_EQ(editor.History().Count(), 2);
        EXPECT_EQ(editor.person.Messages().size(), 1U);
        editor.person.WillPress(QMessageBox::Yes);
        editor.person.WillCancelFileDialog();
        EXPECT_FALSE(RunLoop(
            editor, [=] { ::raise(number); }, 500));
        EXPECT_TRUE(editor.Window().isVisible());
        editor.person.WillPress(QMessageBox::No);
        EXPECT_TRUE(RunLoop(editor, [=] {
            ::raise(number);
            ::raise(SIGTERM); // a second one is the same request
        }));
        EXPECT_EQ(editor.person.Messages().size(), 3U) << number;
        EXPECT_EQ(editor.person.Messages().back().text, "Save Changes ?");
        EXPECT_FALSE(editor.Window().isVisible());
        EXPECT_TRUE(LeftFiles(editor).isEmpty());
    }
}

TEST(ShutDown, ASignalWhileTheQuestionIsOpenIsNoSecondQuestion) {
    EditorWindow editor;
    OpenAndChange(editor);
    QTimer nagger; // under the question and under its Save dialog
    QObject::connect(&nagger, &QTimer::timeout, [] { ::raise(SIGTERM); });
    nagger.start(1);
    editor.person.WillPress(QMessageBox::Yes);
    editor.person.WillChooseFile(editor.Path("kept.png"));
    EXPECT_TRUE(RunLoop(editor, [&editor] { editor.Window().close(); }));
    nagger.stop();
    EXPECT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_EQ(LargestDifference(editor.Read(editor.Path("kept.png")), editor.Shown()), 0);
}

TEST(ShutDown, AnOpenDialogIsCancelledFirst) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    EXPECT_TRUE(RunLoop(editor, [&] {
        QTimer::singleShot(100, [] {
            ASSERT_NE(QApplication::activeModalWidget(), nullptr);
            ::raise(SIGTERM);
        });
        editor.Click("Cmd_Panel", 7); // About, which nobody closes here
    }));
    EXPECT_TRUE(LeftFiles(editor).isEmpty());
}

TEST(ShutDown, AHandlerThatRunsComesToItsEndFirst) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    bool visibleAfterwards = false;
    EXPECT_TRUE(RunLoop(editor, [&] {
        ::raise(SIGTERM);
        editor.Window().close();
        for (int i = 0; i < 50; ++i) {
            LetAllEventsRun();
        }
        visibleAfterwards = editor.Window().isVisible() && editor.History().Count() == 1;
    }));
    EXPECT_TRUE(visibleAfterwards);
}

TEST(ShutDown, EndsInMidScan) {
    const TestScanner scanner(
        {"read-limit true", "read-limit-size 100", "read-delay true", "read-delay-duration 200000"});
    for (const int after : {0, 20, 400}) { // milliseconds: while sources are looked for, and under way
        {
            EditorWindow editor;
            editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
            EXPECT_TRUE(RunLoop(editor, [&] {
                editor.Click("Cmd_Panel", 5);
                QTimer::singleShot(after, &editor.Window(), [&editor] { editor.Window().close(); });
            }));
            EXPECT_TRUE(editor.person.Messages().empty());
            EXPECT_TRUE(LeftFiles(editor).isEmpty());
        }
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "the scanner program is left";
    }
}

TEST(ShutDown, TheSessionsEndAsksOnce) {
    EditorWindow editor;
    OpenAndChange(editor);
    ShutDown& end = editor.Window().End();
    EXPECT_TRUE(end.SessionMayEnd(false)) << "nobody may be asked";
    editor.person.WillPress(QMessageBox::Cancel);
    EXPECT_FALSE(end.SessionMayEnd(true));
    editor.person.WillPress(QMessageBox::No);
    EXPECT_TRUE(end.SessionMayEnd(true));
    // The logout was cancelled elsewhere, and the person edits on: that answer is void.
    editor.Click("Cmd_FlipV");
    editor.person.WillPress(QMessageBox::Cancel);
    EXPECT_FALSE(editor.Window().close());
    editor.person.WillPress(QMessageBox::No);
    EXPECT_TRUE(end.SessionMayEnd(true));
    EXPECT_TRUE(editor.Window().close()) << "the session's end follows";
    EXPECT_EQ(editor.person.Messages().size(), 4U);
}

} // namespace
} // namespace pictorel
