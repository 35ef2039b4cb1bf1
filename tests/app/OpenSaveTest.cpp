// Opening and saving through the window, and the question about unsaved changes.
#include "app/EditorWindow.h"
#include "controls/Label.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

TEST(Open, ShowsThePictureAndStartsAHistory) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("a picture.bmp", MakeScene(320, 200)));
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    EXPECT_EQ(editor.ActiveRow(), 0);
    EXPECT_EQ(editor.Get<Label>("lbl_ImageInfo").Caption(), "(W x H) : 320 x 200");
    EXPECT_EQ(editor.Get<Label>("lbl_Resize", 0).Caption(), "320 x 200 pixels");
    EXPECT_FALSE(editor.Document().ImageModified(0));
    EXPECT_TRUE(editor.Get("Cmd_Panel", 1).IsEnabled());
    EXPECT_FALSE(editor.Get("Cmd_Panel", 2).IsEnabled());
    EXPECT_FALSE(editor.Get("Cmd_Panel", 3).IsEnabled());
    EXPECT_EQ(LargestDifference(editor.Shown(), MakeScene(320, 200)), 0);
    EXPECT_TRUE(QFileInfo::exists(editor.WorkingFile("tmpimg_0_1.jpg")));
    EXPECT_TRUE(QFileInfo::exists(editor.WorkingFile("tmp_preview.jpg")));
    EXPECT_FALSE(QFileInfo::exists(editor.WorkingFile("tmp_preview0.jpg")));
}

TEST(Open, ShowsWhatWasSavedAsAMetafile) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("source.bmp", MakeScene(320, 200)));
    for (const char* const name : {"picture.wmf", "picture.emf"}) {
        editor.Save(editor.Path(name));
        editor.Open(editor.Path(name));
        EXPECT_TRUE(editor.person.Messages().empty()) << name;
        EXPECT_EQ(editor.Document().OpenDialogFolder, editor.Path(name));
        EXPECT_EQ(LargestDifference(editor.Shown(), MakeScene(320, 200)), 0) << name;
    }
}

TEST(Open, CancelChangesNothing) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("one.bmp", MakeScene(40, 30)));
    const QString folder = editor.Document().OpenDialogFolder;
    editor.person.WillCancelFileDialog();
    editor.Click("Cmd_Panel", 0);
    EXPECT_EQ(editor.Document().OpenDialogFolder, folder);
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
}

struct ChangedCase {
    QMessageBox::StandardButton answer;
    bool saveDialogCancelled;
    bool opens;
};

TEST(Open, AsksAboutUnsavedChangesAndDoesAsAnswered) {
    for (const ChangedCase& c :
         {ChangedCase{QMessageBox::Cancel, false, false}, ChangedCase{QMessageBox::No, false, true},
          ChangedCase{QMessageBox::Yes, true, false}, ChangedCase{QMessageBox::Yes, false, true}}) {
        EditorWindow editor;
        editor.Open(editor.MakeFile("first.bmp", MakeScene(40, 30)));
        editor.Click("Cmd_Tab", 2);
        const QString second = editor.MakeFile("second.bmp", MakeScene(50, 60));
        editor.person.WillPress(c.answer);
        if (c.answer == QMessageBox::Yes) {
            c.saveDialogCancelled ? editor.person.WillCancelFileDialog()
                                  : editor.person.WillChooseFile(editor.Path("kept.png"));
        }
        if (c.opens) {
            editor.person.WillChooseFile(second);
        }
        editor.Click("Cmd_Panel", 0);
        ASSERT_EQ(editor.person.Messages().size(), 1U);
        EXPECT_EQ(editor.person.Messages().front().text, "Save Changes ?");
        EXPECT_EQ(editor.person.Messages().front().title, "Attention!");
        EXPECT_EQ(editor.Shown().Width(), c.opens ? 50 : 40);
        EXPECT_EQ(editor.Document().ImageModified(0), !c.opens);
        EXPECT_EQ(QFileInfo::exists(editor.Path("kept.png")), c.answer == QMessageBox::Yes && c.opens);
        EXPECT_FALSE(editor.person.HasAnswersLeft());
    }
}

struct SaveCase {
    const char* typed;
    const char* written;
    int tolerance;
};

TEST(Save, WritesTheFormatOfTheExtension) {
    EditorWindow editor;
    const PixelArray scene = MakeScene(64, 48);
    editor.Open(editor.MakeFile("source.bmp", scene));
    for (const SaveCase& c :
         {SaveCase{"plain.png", "plain.png", 0}, SaveCase{"Mixed.Png", "Mixed.Png", 0},
          SaveCase{"loud.BMP", "loud.BMP", 0}, SaveCase{"layers.tif", "layers.tif", 0},
          SaveCase{"drawing.wmf", "drawing.wmf", 0}, SaveCase{"Drawing.Emf", "Drawing.Emf", 0},
          SaveCase{"photo.jpg", "photo.jpg", 6}, SaveCase{"no extension", "no extension.jpg", 6}}) {
        editor.Document().ImageModified(0) = true;
        editor.Save(editor.Path(c.typed));
        EXPECT_FALSE(editor.Document().ImageModified(0)) << c.typed;
        EXPECT_LE(LargestDifference(editor.Read(editor.Path(c.written)), scene), c.tolerance) << c.typed;
    }
    EXPECT_TRUE(editor.person.Messages().empty());
}

TEST(Save, RefusesAnExtensionThatIsNoneOfTheEleven) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("source.bmp", MakeScene(64, 48)));
    editor.Click("Cmd_Tab", 2);
    for (const char* const name : {"photo.jpeg", "photo.tiff", "photo.txt"}) {
        editor.person.ForgetMessages();
        editor.Save(editor.Path(name));
        ASSERT_EQ(editor.person.Messages().size(), 1U) << name;
        EXPECT_EQ(editor.person.Messages().front().title, "Error");
        EXPECT_FALSE(QFileInfo::exists(editor.Path(name)));
        EXPECT_TRUE(editor.Document().ImageModified(0));
    }
}

TEST(Save, AFailureLeavesTheOldFileWholeAndThePictureChanged) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("source.bmp", MakeScene(64, 48)));
    editor.Click("Cmd_Tab", 2);
    QFile target(editor.Path("kept.png"));
    ASSERT_TRUE(target.open(QIODevice::WriteOnly));
    target.write("precious");
    target.close();
    target.setPermissions(QFile::ReadOwner);
    editor.person.WillPress(QMessageBox::Yes); // yes, replace it
    editor.Save(target.fileName());
    ASSERT_EQ(editor.person.Messages().size(), 2U);
    EXPECT_TRUE(editor.person.Messages().back().text.contains("write-protected"));
    EXPECT_TRUE(editor.Document().ImageModified(0));
    ASSERT_TRUE(target.open(QIODevice::ReadOnly));
    EXPECT_EQ(target.readAll(), "precious");
    EXPECT_EQ(QDir(editor.Path(".")).entryList({".pictorel*"}, QDir::Files | QDir::Hidden).size(), 0);
}

TEST(Close, AsksAboutUnsavedChangesAndClearsUp) {
    EditorWindow editor;
    editor.Open(editor.MakeFile("source.bmp", MakeScene(64, 48)));
    editor.Click("Cmd_Tab", 2);
    editor.person.WillPress(QMessageBox::Cancel);
    EXPECT_FALSE(editor.Window().close());
    EXPECT_TRUE(editor.Window().isVisible());
    editor.person.WillPress(QMessageBox::Yes);
    editor.person.WillCancelFileDialog();
    EXPECT_FALSE(editor.Window().close());
    EXPECT_EQ(editor.History().Count(), 2);
    editor.person.WillPress(QMessageBox::No);
    EXPECT_TRUE(editor.Window().close());
    EXPECT_EQ(QDir(editor.Document().GetTempFolder()).entryList({"tmp*"}, QDir::Files).size(), 0);
}

} // namespace
} // namespace pictorel
