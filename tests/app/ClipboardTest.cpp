// The picture goes to the clipboard and comes from it, by keys.
#include "app/EditorWindow.h"
#include "controls/EditField.h"
#include "controls/RadioButton.h"

#include <QClipboard>
#include <QMimeData>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class Clipboard : public testing::Test {
  protected:
    void Press(int key) {
        editor.Window().activateWindow();
        editor.WaitUntil([&] { return editor.Window().isActiveWindow(); });
        QTest::keyClick(editor.Window().windowHandle(), static_cast<Qt::Key>(key), Qt::ControlModifier);
        QTest::qWait(1);
    }
    // A scene with a hole in it.
    static PixelArray MakeTransparent() {
        PixelArray scene = MakeScene(80, 60);
        scene.SetHasAlpha(true);
        std::uint8_t* const row = scene.WritableRows();
        for (int i = 3; i < 200; i += 4) {
            row[i] = 0;
        }
        return scene;
    }

    EditorWindow editor;
    QClipboard& clipboard = *QGuiApplication::clipboard();
};

TEST_F(Clipboard, CopiesWhatIsOnTheScreenWithItsTransparency) {
    editor.Open(editor.MakeFile("scene.png", MakeTransparent()));
    editor.Click("Cmd_Tab", 2);
    Press(Qt::Key_C);
    const PixelArray copied = editor.Shown();
    editor.Click("Cmd_Panel", 2); // what is done later does not reach the clipboard
    const QImage seen = QImage::fromData(clipboard.mimeData()->data("image/png"));
    ASSERT_EQ(seen.size(), QSize(80, 60));
    EXPECT_EQ(qAlpha(seen.pixel(5, 0)), 0);
    EXPECT_EQ(qBlue(seen.pixel(70, 30)), copied.Row(30)[4 * 70]);
}

TEST_F(Clipboard, PastesItsOwnCopyAsANewDocumentAfterTheQuestion) {
    editor.Open(editor.MakeFile("scene.png", MakeTransparent()));
    editor.Click("Cmd_Tab", 2);
    const PixelArray copied = editor.Shown();
    Press(Qt::Key_C);
    editor.person.WillPress(QMessageBox::Cancel);
    Press(Qt::Key_V);
    EXPECT_EQ(editor.HistoryCaptions().size(), 2);
    editor.person.WillPress(QMessageBox::No);
    Press(Qt::Key_V);
    EXPECT_EQ(editor.person.Messages().size(), 2U);
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    EXPECT_EQ(LargestDifference(editor.Shown(), copied), 0);
    EXPECT_EQ(editor.Window().windowTitle(), "Clipboard[*] - Pictorel");
}

TEST_F(Clipboard, PastesFilesAndSaysWhatItCannot) {
    auto* const files = new QMimeData;
    files->setUrls({QUrl::fromLocalFile(editor.MakeFile("scene.bmp", MakeScene(90, 60)))});
    clipboard.setMimeData(files);
    Press(Qt::Key_V);
    EXPECT_EQ(editor.Window().windowTitle(), "scene.bmp[*] - Pictorel");
    clipboard.setText("words");
    Press(Qt::Key_V);
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_EQ(editor.person.Messages().front().text, "The clipboard holds no picture.");
    EXPECT_EQ(editor.Shown().Width(), 90);
}

TEST_F(Clipboard, CopiesNothingWithoutAPicture) {
    clipboard.setText("words");
    Press(Qt::Key_C);
    EXPECT_EQ(clipboard.text(), "words");
}

TEST_F(Clipboard, AFieldKeepsItsOwnWords) {
    editor.Open(editor.MakeFile("scene.bmp", MakeScene(90, 60)));
    editor.Get<TabControl>("TabControl_Effects").SelectTab(3);
    editor.Get<RadioButton>("RadioButton_Resize", 3).click();
    auto& field = editor.Get<EditField>("Txt_ResizePercent");
    field.setFocus();
    field.selectAll();
    Press(Qt::Key_C);
    EXPECT_EQ(clipboard.text(), "100");
    clipboard.setText("75");
    Press(Qt::Key_V);
    EXPECT_EQ(field.text(), "75");
    field.deselect();
    Press(Qt::Key_C); // nothing marked: the picture is meant
    EXPECT_TRUE(clipboard.mimeData()->hasFormat("image/png"));
}

} // namespace
} // namespace pictorel
