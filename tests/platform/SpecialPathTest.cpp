// The user's folders, as a home with folders of its own names gives them.
#include "platform/Folders.h"
#include "support/ScopedEnvironment.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class SpecialPath : public ::testing::Test {
  protected:
    void SetUp() override {
        QFile file(home_.filePath(QStringLiteral("user-dirs.dirs")));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(
            "XDG_PICTURES_DIR=\"$HOME/My Pictures/\"\n"
            "XDG_DOCUMENTS_DIR=\"$HOME/Texte\"\n"
            "XDG_DESKTOP_DIR=\"$HOME/gone\"\n");
        ASSERT_TRUE(QDir(home_.path()).mkdir(QStringLiteral("My Pictures")));
        ASSERT_TRUE(QDir(home_.path()).mkdir(QStringLiteral("Texte")));
    }

    const QTemporaryDir home_;
    const ScopedEnvironment homeVariable_{"HOME", home_.path()};
    const ScopedEnvironment configuration_{"XDG_CONFIG_HOME", home_.path()};
};

TEST_F(SpecialPath, EndsInExactlyOneSeparator) {
    EXPECT_EQ(GetSpecialPath(kPicturesFolder), home_.path() + QStringLiteral("/My Pictures/"));
    EXPECT_EQ(GetSpecialPath(kDocumentsFolder), home_.path() + QStringLiteral("/Texte/"));
}

TEST_F(SpecialPath, IsEmptyWhereThereIsNone) {
    EXPECT_EQ(GetSpecialPath(kDesktopFolder), QString()) << "the folder does not exist";
    for (const int unknown : {-1, 0, 1, 4711}) {
        EXPECT_EQ(GetSpecialPath(unknown), QString()) << unknown;
    }
}

} // namespace
} // namespace pictorel
