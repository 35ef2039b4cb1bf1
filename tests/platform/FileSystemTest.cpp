// Deleting, renaming and naming files.
#include "platform/FileSystem.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class FileSystemTest : public ::testing::Test {
  protected:
    QString Path(const char* name) const { return folder_.filePath(QString::fromUtf8(name)); }

    QString Make(const char* name, const char* content) const {
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        return file.fileName();
    }

    static QByteArray ContentOf(const QString& fileName) {
        QFile file(fileName);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
    }

    FileSystem fileSystem_;
    const QTemporaryDir folder_;
};

TEST_F(FileSystemTest, DeletesWriteProtectedFilesToo) {
    const QString file = Make("Ünser Bild.jpg", "x");
    ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner));
    fileSystem_.Delete(file);
    EXPECT_FALSE(QFile::exists(file));
}

TEST_F(FileSystemTest, WhatIsNotThereCannotBeDeletedOrMoved) {
    EXPECT_THROW(fileSystem_.Delete(Path("none.jpg")), FileError);
    EXPECT_THROW(fileSystem_.Delete(QString()), FileError);
    EXPECT_THROW(fileSystem_.Move(Path("none.jpg"), Path("b.jpg")), FileError);
    EXPECT_FALSE(QFile::exists(Path("b.jpg")));
}

TEST_F(FileSystemTest, AFolderIsNoFile) {
    ASSERT_TRUE(QDir(folder_.path()).mkdir(QStringLiteral("album")));
    EXPECT_THROW(fileSystem_.Delete(Path("album")), FileError);
    EXPECT_TRUE(QFile::exists(Path("album")));
}

TEST_F(FileSystemTest, MovesAFile) {
    const QString from = Make("a b.jpg", "pixels");
    fileSystem_.Move(from, Path("c.jpg"));
    EXPECT_FALSE(QFile::exists(from));
    EXPECT_EQ(ContentOf(Path("c.jpg")), "pixels");
}

TEST_F(FileSystemTest, NeverMovesOntoAnotherFile) {
    const QString one = Make("1.jpg", "one");
    const QString two = Make("2.jpg", "two");
    try {
        fileSystem_.Move(one, two);
        FAIL();
    } catch (const FileError& error) {
        EXPECT_NE(std::string(error.what()).find("1.jpg"), std::string::npos) << error.what();
    }
    EXPECT_EQ(ContentOf(one), "one");
    EXPECT_EQ(ContentOf(two), "two");
}

TEST_F(FileSystemTest, MovingAFileOntoItselfLeavesIt) {
    const QString file = Make("1.jpg", "one");
    EXPECT_NO_THROW(fileSystem_.Move(file, file));
    EXPECT_EQ(ContentOf(file), "one");
}

TEST_F(FileSystemTest, Extensions) {
    struct Case {
        const char* name;
        const char* extension;
    };
    const auto cases = {Case{"a.b.jpg", "jpg"},    Case{"/p/PHOTO.JPG", "JPG"}, Case{"/p.q/photo", ""},
                        Case{"photo.", ""},        Case{"photo", ""},           Case{"", ""},
                        Case{"/p/日本.tif", "tif"}};
    for (const Case& c : cases) {
        EXPECT_EQ(fileSystem_.ExtensionOf(QString::fromUtf8(c.name)).toStdString(), c.extension) << c.name;
    }
}

} // namespace
} // namespace pictorel
