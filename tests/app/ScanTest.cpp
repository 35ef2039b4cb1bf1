// The Scan button through the window, against the scanner library's own virtual device.
#include "app/EditorWindow.h"
#include "programs/scanner/TestScanner.h"

#include <QDir>
#include <QEvent>
#include <QFileInfo>
#include <QTest>
#include <gtest/gtest.h>

#include <array>
#include <utility>

namespace pictorel {
namespace {

constexpr int kInvert = 2; // of Cmd_Tab
constexpr int kScan = 5;   // of Cmd_Panel

bool TakesCommands(EditorWindow& editor) {
    return editor.Get<ContainerPanel>("Resizer_Main").IsEnabled();
}

// Sees whether a widget is disabled, however shortly.
class DisabledWatch : public QObject {
  public:
    explicit DisabledWatch(QWidget& widget) { widget.installEventFilter(this); }
    bool WasDisabled() const { return wasDisabled_; }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::EnabledChange && !static_cast<QWidget*>(watched)->isEnabled()) {
            wasDisabled_ = true;
        }
        return false;
    }

  private:
    bool wasDisabled_ = false;
};

// Presses Scan and waits for its end, which may come while the button is still being pressed.
void Scan(EditorWindow& editor) {
    const DisabledWatch watch(editor.Get<ContainerPanel>("Resizer_Main"));
    editor.Click("Cmd_Panel", kScan);
    EXPECT_TRUE(editor.WaitUntil([&] { return TakesCommands(editor); }, 20000));
    EXPECT_TRUE(watch.WasDisabled());
    QTest::qWait(20); // a message comes right after
}

TEST(Scan, BringsAPageInAsANewPicture) {
    const TestScanner scanner({"read-delay true", "read-delay-duration 100000"});
    EditorWindow editor;
    Scan(editor);
    EXPECT_TRUE(editor.person.Messages().empty());
    EXPECT_EQ(editor.Shown().Width(), kTestPageSide);
    EXPECT_EQ(editor.Shown().Details().dotsPerInchX, 200);
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    EXPECT_EQ(editor.ActiveRow(), 0);
    EXPECT_FALSE(editor.Document().ImageModified(0));
    EXPECT_FALSE(QFileInfo::exists(editor.WorkingFile("tmp_scan.jpg")));
    EXPECT_TRUE(editor.Get("Cmd_Tab", kInvert).IsEnabled());
    EXPECT_TRUE(editor.Get("Cmd_Panel", kScan).IsEnabled());
    EXPECT_FALSE(editor.Get("Cmd_Panel", 2).IsEnabled()) << "nothing to undo";
    EXPECT_FALSE(editor.Get<ProgressBar>("ProgressBar").isVisible());
}

TEST(Scan, TakesNoCommandButPaintsMeanwhile) {
    const TestScanner scanner(
        {"read-limit true", "read-limit-size 8000", "read-delay true", "read-delay-duration 100000"});
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    editor.Click("Cmd_Panel", kScan);
    int moments = 0;
    while (moments < 2000) {
        static constexpr std::array<std::pair<const char*, int>, 3> kButtons{
            {{"Cmd_Tab", kInvert}, {"Cmd_Panel", kScan}, {"Cmd_RotateLeft", 0}}};
        const auto& [name, index] = kButtons[static_cast<std::size_t>(moments) % kButtons.size()];
        if (TakesCommands(editor)) {
            break;
        }
        editor.Click(name, index);
        QTest::qWait(5);
        ++moments;
    }
    EXPECT_GT(moments, 20) << "the window stood still";
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    EXPECT_EQ(editor.Shown().Width(), kTestPageSide);
}

TEST(Scan, NoScannerIsSaid) {
    const TestScanner scanner({}, 1, "# none");
    EditorWindow editor;
    for (const bool withPicture : {false, true}) {
        if (withPicture) {
            editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
            editor.Click("Cmd_Tab", kInvert);
        }
        editor.person.ForgetMessages();
        Scan(editor);
        ASSERT_EQ(editor.person.Messages().size(), 1U);
        EXPECT_EQ(editor.person.Messages().front().text, "No Scanner Detected!");
        EXPECT_EQ(editor.person.Messages().front().icon, QMessageBox::Warning);
        EXPECT_EQ(editor.HistoryCaptions().size(), withPicture ? 2 : 0);
        EXPECT_EQ(editor.Get("Cmd_Tab", kInvert).IsEnabled(), withPicture);
        EXPECT_EQ(editor.Document().ImageModified(0), withPicture);
    }
}

TEST(Scan, AFaultLeavesPictureAndHistoryAlone) {
    const TestScanner scanner({"read-status-code \"SANE_STATUS_NO_DOCS\""});
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    const PixelArray before = editor.Shown();
    Scan(editor);
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_TRUE(editor.person.Messages().front().text.contains("no paper"));
    EXPECT_EQ(editor.person.Messages().front().icon, QMessageBox::Critical);
    EXPECT_EQ(LargestDifference(editor.Shown(), before), 0);
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    editor.Click("Cmd_Tab", kInvert);
    EXPECT_EQ(editor.History().Count(), 2) << "and editing goes on";
}

TEST(Scan, APageThatCannotBeWrittenIsSaid) {
    const TestScanner scanner;
    EditorWindow editor;
    // A folder that is not empty stands where the page's file has to go.
    ASSERT_TRUE(QDir().mkpath(editor.WorkingFile("tmp_scan.jpg/inside")));
    Scan(editor);
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_EQ(editor.person.Messages().front().text, "Can not save image file!");
    EXPECT_EQ(editor.History().Count(), 0);
}

struct QuestionCase {
    QMessageBox::StandardButton answer;
    bool saveDialogCancelled;
    bool scans;
};

TEST(Scan, AsksAboutUnsavedChangesAndDoesAsAnswered) {
    const TestScanner scanner;
    for (const QuestionCase& c :
         {QuestionCase{QMessageBox::Cancel, false, false}, QuestionCase{QMessageBox::No, false, true},
          QuestionCase{QMessageBox::Yes, true, false}, QuestionCase{QMessageBox::Yes, false, true}}) {
        EditorWindow editor;
        editor.Open(editor.MakeFile("first.bmp", MakeScene(60, 40)));
        editor.Click("Cmd_Tab", kInvert);
        editor.person.WillPress(c.answer);
        if (c.answer == QMessageBox::Yes) {
            c.saveDialogCancelled ? editor.person.WillCancelFileDialog()
                                  : editor.person.WillChooseFile(editor.Path("kept.png"));
        }
        Scan(editor);
        ASSERT_EQ(editor.person.Messages().size(), 1U);
        EXPECT_EQ(editor.person.Messages().front().text, "Save Changes ?");
        EXPECT_EQ(editor.Shown().Width(), c.scans ? kTestPageSide : 60);
        EXPECT_EQ(editor.Document().ImageModified(0), !c.scans);
        EXPECT_EQ(editor.History().Count(), c.scans ? 1 : 2);
        EXPECT_FALSE(editor.person.HasAnswersLeft());
    }
}

} // namespace
} // namespace pictorel
