// Pictures dropped on the window are opened as Open opens them, or not taken at all.
#include "app/EditorWindow.h"
#include "controls/EditField.h"

#include <QDialog>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class Drop : public testing::Test {
  protected:
    // Whether the window takes it; taken things are dropped and opened.
    bool DropOn(const QList<QUrl>& urls, QWidget* target = nullptr) {
        QMimeData data;
        data.setUrls(urls);
        return DropOn(data, target);
    }
    bool DropOn(const QMimeData& data, QWidget* target = nullptr) {
        QWidget& window = target == nullptr ? editor.Window() : *target;
        QDragEnterEvent enter({200, 200}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&window, &enter);
        if (!enter.isAccepted()) {
            return false;
        }
        EXPECT_EQ(enter.dropAction(), Qt::CopyAction);
        QDropEvent drop({200, 200}, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&window, &drop);
        EXPECT_TRUE(drop.isAccepted());
        QTest::qWait(1);
        return true;
    }
    QUrl Picture(const QString& name, int width) {
        return QUrl::fromLocalFile(editor.MakeFile(name, MakeScene(width, 60)));
    }

    EditorWindow editor;
};

TEST_F(Drop, OpensTheFirstFile) {
    EXPECT_TRUE(DropOn({Picture("a b #1.bmp", 80), Picture("second.bmp", 90), Picture("third.bmp", 90)}));
    EXPECT_EQ(editor.Shown().Width(), 80);
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    for (const char* const name : {"a b #1.bmp", "second.bmp", "third.bmp"}) {
        EXPECT_TRUE(editor.person.Messages().front().text.contains(name));
    }
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
    EXPECT_EQ(editor.Document().OpenDialogFolder, editor.Path("a b #1.bmp"));
    EXPECT_TRUE(editor.Get("Cmd_Panel", 1).IsEnabled());
}

TEST_F(Drop, AsksBeforeChangesAreLost) {
    ASSERT_TRUE(DropOn({Picture("first.bmp", 80)}));
    editor.Click("Cmd_Tab", 2);
    editor.person.WillPress(QMessageBox::Cancel);
    EXPECT_TRUE(DropOn({Picture("second.bmp", 90)}));
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_EQ(editor.Shown().Width(), 80);
    editor.person.WillPress(QMessageBox::No);
    EXPECT_TRUE(DropOn({Picture("second.bmp", 90)}));
    EXPECT_EQ(editor.Shown().Width(), 90);
    EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
}

TEST_F(Drop, ReportsAFileThatIsNoPictureAndKeepsTheOneOpen) {
    ASSERT_TRUE(DropOn({Picture("first.bmp", 80)}));
    QFile text(editor.Path("words.png"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("no picture at all");
    text.close();
    EXPECT_TRUE(DropOn({QUrl::fromLocalFile(text.fileName())}));
    ASSERT_EQ(editor.person.Messages().size(), 1U);
    EXPECT_EQ(editor.person.Messages().front().text, "Unsupported file format!");
    EXPECT_EQ(editor.Shown().Width(), 80);
}

TEST_F(Drop, RefusesWhatIsNoFile) {
    QMimeData words;
    words.setText("/etc/hostname");
    EXPECT_FALSE(DropOn(words));
    EXPECT_FALSE(DropOn({QUrl("https://example.org/picture.jpg")}));
    EXPECT_FALSE(DropOn({QUrl::fromLocalFile(editor.Path("absent.jpg"))}));
    EXPECT_FALSE(DropOn({QUrl::fromLocalFile(editor.Path("."))}));
}

TEST_F(Drop, IsRefusedWhileOpenIsDisabledOrAQuestionIsUp) {
    const QUrl picture = Picture("first.bmp", 80);
    editor.Get("Cmd_Panel", 0).SetEnabled(false);
    EXPECT_FALSE(DropOn({picture}));
    editor.Get("Cmd_Panel", 0).SetEnabled(true);
    bool taken = true;
    QTimer::singleShot(20, [&] { taken = DropOn({picture}); });
    QDialog box(&editor.Window());
    QTimer::singleShot(60, &box, [&] { box.reject(); });
    box.exec();
    EXPECT_FALSE(taken);
    EXPECT_FALSE(editor.Get<EditField>("Txt_ImageWidth").acceptDrops());
}

} // namespace
} // namespace pictorel
