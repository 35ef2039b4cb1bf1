// The edit history through the window: rows, working files, undo and redo.
#include "app/EditorWindow.h"
#include "controls/Label.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

constexpr int kInvert = 2; // of Cmd_Tab
constexpr int kUndo = 2;   // of Cmd_Panel
constexpr int kRedo = 3;

QStringList WorkingFiles(EditorWindow& editor) {
    return QDir(editor.Document().GetTempFolder()).entryList({"tmpimg_*"}, QDir::Files, QDir::Name);
}

void ExpectSound(EditorWindow& editor) {
    ASSERT_GE(editor.ActiveRow(), 0);
    ASSERT_LE(editor.History().Count(), 15);
    EXPECT_EQ(WorkingFiles(editor).size(), editor.History().Count());
    for (int row = 0; row < editor.History().Count(); ++row) {
        EXPECT_EQ(editor.History().Item(row, 1).value,
                  editor.WorkingFile(QString("tmpimg_0_%1.jpg").arg(row + 1)));
        EXPECT_EQ(editor.History().Item(row, 0).textColour, row > editor.ActiveRow() ? kSilver : kBlack);
    }
    EXPECT_EQ(editor.Get("Cmd_Panel", kUndo).IsEnabled(), editor.ActiveRow() > 0);
    EXPECT_EQ(editor.Get("Cmd_Panel", kRedo).IsEnabled(), editor.ActiveRow() < editor.History().Count() - 1);
}

TEST(History, UndoAndRedoBringBackWhatWasThere) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(301, 203)));
    std::vector<PixelArray> states{editor.Shown()};
    for (const auto& [name, index] : std::vector<std::pair<const char*, int>>{
             {"Cmd_Tab", 1}, {"Cmd_Tab", kInvert}, {"Cmd_RotateLeft", 0}, {"Cmd_FlipV", 0}}) {
        editor.Click(name, index);
        states.push_back(editor.Shown());
    }
    ExpectSound(editor);
    for (int row = 3; row >= 0; --row) {
        editor.Click("Cmd_Panel", kUndo);
        EXPECT_LE(LargestDifference(editor.Shown(), states[static_cast<std::size_t>(row)]), 2)
            << "undo to " << row;
        ExpectSound(editor);
    }
    for (int row = 1; row <= 4; ++row) {
        editor.Click("Cmd_Panel", kRedo);
        EXPECT_LE(LargestDifference(editor.Shown(), states[static_cast<std::size_t>(row)]), 2)
            << "redo to " << row;
        ExpectSound(editor);
    }
    EXPECT_TRUE(editor.Document().ImageModified(0));
}

TEST(History, ANewEditDropsTheRowsThatCouldBeRedone) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    editor.Click("Cmd_Tab", 0);
    editor.Click("Cmd_Tab", 1);
    editor.Click("Cmd_Tab", kInvert);
    editor.Click("Cmd_Panel", kUndo);
    editor.Click("Cmd_Panel", kUndo);
    editor.Click("Cmd_FlipH");
    EXPECT_EQ(editor.HistoryCaptions(), (QStringList{"Open", "Auto Contrast", "Flip Horizontal"}));
    EXPECT_EQ(editor.ActiveRow(), 2);
    ExpectSound(editor);
}

TEST(History, TheSixteenthRowPushesOutTheFirst) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(40, 30)));
    for (int edit = 0; edit < 14; ++edit) {
        editor.Click("Cmd_Tab", kInvert);
    }
    EXPECT_EQ(editor.HistoryCaptions().first(), "Open");
    ExpectSound(editor);
    for (int edit = 0; edit < 3; ++edit) {
        editor.Click("Cmd_FlipV");
        ExpectSound(editor);
    }
    EXPECT_EQ(editor.History().Count(), 15);
    EXPECT_EQ(editor.HistoryCaptions().first(), "Invert");
    for (int step = 0; step < 20; ++step) {
        editor.Click("Cmd_Panel", kUndo);
    }
    EXPECT_EQ(editor.ActiveRow(), 0);
    ExpectSound(editor);
}

TEST(History, PickingARowJumpsToIt) {
    EditorWindow editor;
    const PixelArray scene = MakeScene(60, 40);
    editor.Open(editor.MakeFile("scene.bmp", scene));
    editor.Click("Cmd_Tab", kInvert);
    editor.Click("Cmd_RotateRight");
    for (const int row : {0, 2, 1, 1}) {
        editor.PickHistoryRow(row);
        EXPECT_EQ(editor.ActiveRow(), row);
        EXPECT_EQ(editor.Shown().Width(), row == 2 ? 40 : 60);
        EXPECT_TRUE(editor.History().IsEnabled());
        EXPECT_TRUE(editor.Get("Cmd_Tab", kInvert).IsEnabled());
        ExpectSound(editor);
    }
    editor.PickHistoryRow(0);
    EXPECT_LE(LargestDifference(editor.Shown(), scene), 2);
}

TEST(History, AWorkingFileThatIsGoneIsReportedAndThePictureStays) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    editor.Click("Cmd_Tab", kInvert);
    const PixelArray before = editor.Shown();
    QFile::remove(editor.WorkingFile("tmpimg_0_1.jpg"));
    editor.Click("Cmd_Panel", kUndo);
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_EQ(editor.person.Messages().front().text, "Unsupported file format!");
    EXPECT_EQ(LargestDifference(editor.Shown(), before), 0);
    EXPECT_EQ(editor.ActiveRow(), 1) << "the row of the picture that is on the screen";
    EXPECT_FALSE(editor.Get("Cmd_Panel", kUndo).IsEnabled()) << "there is nothing left to go back to";
}

TEST(History, EditingGoesOnAfterTheTemporaryFolderVanished) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(60, 40)));
    ASSERT_TRUE(QDir(editor.Document().GetTempFolder()).removeRecursively());
    editor.Click("Cmd_Tab", kInvert);
    EXPECT_TRUE(editor.person.Messages().empty());
    EXPECT_TRUE(QFileInfo::exists(editor.WorkingFile("tmpimg_0_2.jpg")));
    EXPECT_TRUE(editor.Get("Cmd_Tab", kInvert).IsEnabled());
    editor.Save(editor.Path("saved.png"));
    EXPECT_EQ(LargestDifference(editor.Read(editor.Path("saved.png")), editor.Shown()), 0);
}

TEST(History, TransparencySurvivesUndo) {
    EditorWindow editor;
    PixelArray scene = MakeScene(60, 40);
    scene.SetHasAlpha(true);
    std::uint8_t* const rows = scene.WritableRows();
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 60; ++x) {
            rows[y * scene.Stride() + 4 * x + 3] = static_cast<std::uint8_t>(x * 4);
        }
    }
    editor.Open(editor.MakeFile("clear.png", scene));
    editor.Click("Cmd_Tab", kInvert);
    editor.Click("Cmd_Panel", kUndo);
    EXPECT_TRUE(editor.Shown().HasAlpha());
    EXPECT_LE(LargestDifference(editor.Shown(), scene), 2);
}

} // namespace
} // namespace pictorel
