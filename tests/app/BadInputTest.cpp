// Files that are no pictures, or broken ones, through the Open command.
#include "app/EditorWindow.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class BadInput : public testing::Test {
  protected:
    BadInput() { editor.Open(editor.MakeFile("good.bmp", MakeScene(64, 48))); }

    QString WriteFile(const QString& name, const QByteArray& bytes) {
        QFile file(editor.Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }

    QByteArray BytesOf(const QString& name) {
        QFile file(editor.Path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    void ExpectRefused(const QString& fileName) {
        editor.person.ForgetMessages();
        editor.Open(fileName);
        ASSERT_EQ(editor.person.Messages().size(), 1U) << fileName.toStdString();
        EXPECT_EQ(editor.person.Messages().front().text, "Unsupported file format!")
            << fileName.toStdString();
        EXPECT_EQ(editor.person.Messages().front().title, "Error");
        EXPECT_EQ(editor.person.Messages().front().icon, QMessageBox::Critical);
        EXPECT_EQ(LargestDifference(editor.Shown(), MakeScene(64, 48)), 0);
        EXPECT_EQ(editor.HistoryCaptions(), QStringList{"Open"});
        EXPECT_EQ(editor.Document().OpenDialogFolder, fileName);
    }

    EditorWindow editor;
};

TEST_F(BadInput, NoPictureIsRefusedAndTheOpenOneStays) {
    ExpectRefused(WriteFile("empty.jpg", ""));
    ExpectRefused(WriteFile("text.png", "This is no picture at all, whatever its name says."));
    ExpectRefused(WriteFile("start.jpg", QByteArray::fromHex("ffd8ffe000104a464946")));
    ExpectRefused(WriteFile("zeros.bmp", QByteArray(4096, '\0')));
    ExpectRefused(editor.MakeFile("narrow.png", MakeScene(1, 40)));
    ExpectRefused(editor.MakeFile("low.bmp", MakeScene(40, 1)));
}

TEST_F(BadInput, AHugeSizeInATinyFileIsRefused) {
    QByteArray header("BM", 2);
    header += QByteArray::fromHex(
        "360000000000000036000000280000004"
        "09c0000409c0000010018000000000000000000000000000000000000000000000000000");
    ExpectRefused(WriteFile("huge.bmp", header));
}

TEST_F(BadInput, TruncatedFilesShowWhatIsThereOrAreRefused) {
    for (const char* const format : {"png", "jpg", "bmp", "tif", "gif"}) {
        editor.MakeFile(QString("whole.%1").arg(format), MakeScene(200, 150));
        const QByteArray whole = BytesOf(QString("whole.%1").arg(format));
        for (const int percent : {2, 30, 70, 99}) {
            editor.person.ForgetMessages();
            editor.Open(WriteFile(QString("cut%1.%2").arg(percent).arg(format),
                                  whole.left(whole.size() * percent / 100)));
            const bool refused = !editor.person.Messages().empty();
            EXPECT_TRUE(refused || editor.Shown().Width() == 200) << format << " " << percent;
        }
    }
}

TEST_F(BadInput, NamesWithAnyLettersOpenAndSave) {
    const QString name = QString::fromUtf8("\xC3\x84pfel \xE5\x86\x99\xE7\x9C\x9F & Co.png");
    editor.Open(editor.MakeFile(name, MakeScene(70, 50)));
    EXPECT_EQ(editor.Shown().Width(), 70);
    const QString target = QString::fromUtf8(
        "\xC3\xBC"
        "ber all.bmp");
    editor.Save(editor.Path(target));
    EXPECT_EQ(LargestDifference(editor.Read(editor.Path(target)), MakeScene(70, 50)), 0);
    EXPECT_TRUE(editor.person.Messages().empty());
}

} // namespace
} // namespace pictorel
