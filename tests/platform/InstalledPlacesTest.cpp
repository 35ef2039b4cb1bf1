// Where the editor finds its data and its helper programs, installed under any prefix and in a build folder.
#include "platform/Folders.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace pictorel {
namespace {

class InstalledPlaces : public ::testing::Test {
  protected:
    QString Path(const QString& name) const { return prefix_.filePath(name); }

    void MakeProgram(const QString& name, bool executable = true) const {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(Path(name)).path()));
        QFile file(Path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(!executable || file.setPermissions(file.permissions() | QFile::ExeOwner));
    }

    const QTemporaryDir prefix_;
    const QString programs_ = prefix_.filePath(QStringLiteral("bin"));
    const QString helper_ = QStringLiteral("helper");
};

TEST_F(InstalledPlaces, AreBelowThePrefixOfTheProgram) {
    ASSERT_TRUE(QDir().mkpath(Path(QStringLiteral("share/pictorel"))));
    MakeProgram(QStringLiteral("libexec/pictorel/helper"));
    MakeProgram(QStringLiteral("bin/helper")); // somebody else's program of that name
    EXPECT_EQ(ApplicationFolderOf(programs_), Path(QStringLiteral("share/pictorel")));
    EXPECT_EQ(HelperProgramOf(programs_, helper_), Path(QStringLiteral("libexec/pictorel/helper")));
}

TEST_F(InstalledPlaces, AreBesideTheProgramInABuildFolder) {
    MakeProgram(QStringLiteral("bin/helper"));
    EXPECT_EQ(ApplicationFolderOf(programs_), programs_);
    EXPECT_EQ(HelperProgramOf(programs_, helper_), Path(QStringLiteral("bin/helper")));
}

TEST_F(InstalledPlaces, AreNoFilesThatOnlyHaveTheName) {
    MakeProgram(QStringLiteral("share/pictorel"));
    MakeProgram(QStringLiteral("libexec/pictorel/helper"), false);
    EXPECT_EQ(ApplicationFolderOf(programs_), programs_);
    EXPECT_EQ(HelperProgramOf(programs_, helper_), Path(QStringLiteral("bin/helper")));
}

} // namespace
} // namespace pictorel
