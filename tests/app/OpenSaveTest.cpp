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
          SaveCase{"photo.jpg", "photo.jpg", 6}, SaveCase{"photo.JPEG", "photo.JPEG", 6},
          SaveCase{"scan.tiff", "scan.tiff", 0}}) {
        editor.Document().ImageModified(0) = true;
        editor.Save(editor.Path(c.typed));
        EXPECT_FALSE(editor.Document().ImageModified(0)) << c.typed;
        EXPECT_LE(LargestDifference(editor.Read(editor.Path(c.written)), scene), c.tolerance) << c.typed;
    }
    EXPECT_TRUE(editor.person.Messages().empty());
}

TEST(Save, ANameWithoutAnExtensionThatIsKnownGetsTheChosenOne) {
    for (const char* const source : {"source.jpg", "source.png"}) {
        EditorWindow editor;
        editor.Open(editor.MakeFile(source, MakeScene(64, 48)));
        const QString extension = QFileInfo(source).suffix();
        for (const char* const name : {"plain", "St. Mark", "photo.txt"}) {
            editor.Save(editor.Path(name));
            EXPECT_TRUE(QFileInfo::exists(editor.Path(name) + "." + extension)) << name;
            EXPECT_FALSE(QFileInfo::exists(editor.Path(name))) << name;
        }
        for (const SeenMessage& message : editor.person.Messages()) {
            ADD_FAILURE() << message.text.toStdString();
        }
    }
}

struct ProposalCase {
    const char* opened;
    const char* proposed;
    const char* filter;
};

TEST(Save, BeginsWithTheNameFolderAndFormatOfTheOpenPicture) {
    EditorWindow editor;
    QDir(editor.Path(".")).mkdir("elsewhere");
    for (const ProposalCase& c : {
             ProposalCase{"elsewhere/plain.png", "plain.png", "PNG"},
             ProposalCase{"Loud.JPG", "Loud.JPG", "JPG"},
             ProposalCase{"long.jpeg", "long.jpeg", "JPG"},
             ProposalCase{"old.dib", "old.bmp", "BMP"},
             ProposalCase{"wavelets.jp2", "wavelets.j2k", "J2K"},
             ProposalCase{"today.webp", "today.jpg", "JPG"},
             ProposalCase{"St. Mark", "St. Mark.jpg", "JPG"},
             ProposalCase{"none", "none.jpg", "JPG"},
         }) {
        // Whatever the name says, it is opened by what is in it.
        const QString made = editor.MakeFile("any.png", MakeScene(64, 48));
        ASSERT_TRUE(QFile::rename(made, editor.Path(c.opened)));
        editor.Open(editor.Path(c.opened));
        editor.person.WillCancelFileDialog();
        editor.Click("Cmd_Panel", 1);
        const SeenFileDialog& dialog = editor.person.FileDialogs().back();
        EXPECT_EQ(dialog.fileName, c.proposed) << c.opened;
        EXPECT_EQ(dialog.folder, QFileInfo(editor.Path(c.opened)).absolutePath());
        EXPECT_TRUE(dialog.filter.startsWith(c.filter)) << c.opened << ": " << dialog.filter.toStdString();
        EXPECT_TRUE(dialog.firstFilter.startsWith("JPG"));
    }
    editor.Save(editor.Path("elsewhere/later.tif"));
    editor.person.WillCancelFileDialog();
    editor.Click("Cmd_Panel", 1);
    EXPECT_EQ(editor.person.FileDialogs().back().fileName, "later.tif");
    EXPECT_EQ(editor.person.FileDialogs().back().folder,
              QFileInfo(editor.Path("elsewhere")).absoluteFilePath());
}

TEST(Save, AsksBeforeAFileIsReplacedAlsoUnderTheNameWithItsExtension) {
    EditorWindow editor;
    const QString original = editor.MakeFile("photo.png", MakeScene(64, 48));
    editor.Open(original);
    editor.Click("Cmd_Tab", 2);
    const PixelArray before = editor.Read(original);
    for (const char* const typed : {"photo.png", "photo"}) {
        editor.person.ForgetMessages();
        editor.person.WillChooseFile(editor.Path(typed));
        editor.person.WillPress(QMessageBox::No);
        editor.person.WillCancelFileDialog(); // it is there again for another name
        editor.Click("Cmd_Panel", 1);
        ASSERT_EQ(editor.person.Messages().size(), 1U) << typed;
        EXPECT_TRUE(editor.person.Messages().front().text.contains("photo.png"));
        EXPECT_EQ(editor.person.FileDialogs().back().fileName, "photo.png");
        EXPECT_FALSE(editor.person.HasAnswersLeft());
        EXPECT_EQ(LargestDifference(editor.Read(original), before), 0);
        EXPECT_TRUE(editor.Document().ImageModified(0));
    }
    editor.person.WillTakeWhatIsProposed();
    editor.person.WillPress(QMessageBox::Yes);
    editor.Click("Cmd_Panel", 1);
    EXPECT_EQ(LargestDifference(editor.Read(original), editor.Shown()), 0);
    EXPECT_FALSE(editor.Document().ImageModified(0));
}

TEST(Title, NamesThePictureAndMarksUnsavedChanges) {
    EditorWindow editor;
    const auto title = [&] {
        return std::pair(editor.Window().windowTitle(), editor.Window().isWindowModified());
    };
    EXPECT_EQ(title(), std::pair(QString("Pictorel"), false));
    editor.Open(editor.MakeFile("a [*] b.png", MakeScene(64, 48)));
    EXPECT_EQ(title(), std::pair(QString("a [*][*] b.png[*] - Pictorel"), false));
    editor.Click("Cmd_Tab", 2);
    EXPECT_EQ(title().second, true);
    editor.Click("Cmd_Panel", 2); // what is undone still counts as changed
    EXPECT_EQ(title().second, true);
    editor.Save(editor.Path("other.png"));
    EXPECT_EQ(title(), std::pair(QString("other.png[*] - Pictorel"), false));
    QFile text(editor.Path("words.png"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no picture at all");
    text.close();
    editor.Open(text.fileName());
    EXPECT_EQ(title().first, QString("other.png[*] - Pictorel"));
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
