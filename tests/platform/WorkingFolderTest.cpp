// The private folder of working files: whose it is, how long it lives, and which other folders it may sweep.
#include "platform/WorkingFolder.h"
#include "support/ScopedEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <memory>

namespace pictorel {
namespace {

class WorkingFolderTest : public ::testing::Test {
  protected:
    QString Path(const QString& name) const { return temporary_.filePath(name); }

    // A folder as this program names its own, with one file in it.
    QString MakeFolder(const QString& name, bool withLock) const {
        EXPECT_TRUE(QDir(temporary_.path()).mkpath(name));
        Touch(Path(name) + QStringLiteral("/tmpimg_0_1.jpg"));
        if (withLock) {
            Touch(Path(name) + QStringLiteral("/lock"));
        }
        return Path(name);
    }

    static void Touch(const QString& fileName) {
        QFile file(fileName);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }

    static void MakeOld(const QString& path, int seconds) {
        timespec times[2]{};
        times[0].tv_sec = times[1].tv_sec = ::time(nullptr) - seconds;
        ASSERT_EQ(::utimensat(AT_FDCWD, path.toLocal8Bit().constData(), times, 0), 0);
    }

    const QTemporaryDir temporary_;
    const ScopedEnvironment variable_{"TMPDIR", temporary_.path()};
};

TEST_F(WorkingFolderTest, IsPrivateToItsUserAndItsOwner) {
    WorkingFolder one;
    WorkingFolder two; // sweeps: the first is alive
    const QString path = one.GetTempFolder();
    EXPECT_TRUE(path.startsWith(temporary_.path() + u'/')) << path.toStdString();
    EXPECT_TRUE(path.endsWith(u'/') && !path.endsWith(QStringLiteral("//"))) << path.toStdString();
    EXPECT_NE(path, two.GetTempFolder());
    EXPECT_EQ(path, one.GetTempFolder()) << "asked twice";
    struct stat status {};
    ASSERT_EQ(::stat(path.toLocal8Bit().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

TEST_F(WorkingFolderTest, GoesWithItsFiles) {
    QString path;
    {
        WorkingFolder folder;
        path = folder.GetTempFolder();
        Touch(path + QStringLiteral("tmpimg_0_1.jpg"));
    }
    EXPECT_FALSE(QFileInfo::exists(path));
    EXPECT_TRUE(QDir(temporary_.path()).isEmpty());
}

TEST_F(WorkingFolderTest, IsMadeAgainWhereSomebodyDeletedIt) {
    WorkingFolder folder;
    ASSERT_TRUE(QDir(folder.GetTempFolder()).removeRecursively());
    const QString path = folder.GetTempFolder();
    EXPECT_TRUE(QFileInfo(path).isDir()) << path.toStdString();
    const WorkingFolder other; // the new one is locked like the first
    EXPECT_TRUE(QFileInfo(path).isDir());
}

TEST_F(WorkingFolderTest, IsSweptAfterItsProcessDied) {
    const pid_t child = ::fork();
    if (child == 0) {
        auto folder = std::make_unique<WorkingFolder>();
        Touch(folder->GetTempFolder() + QStringLiteral("tmpimg_0_1.jpg"));
        folder.release(); // NOLINT(bugprone-unused-return-value): a crash
        ::_exit(0);
    }
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    ASSERT_EQ(QDir(temporary_.path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size(), 1);
    { const WorkingFolder next; }
    EXPECT_TRUE(QDir(temporary_.path()).isEmpty());
}

TEST_F(WorkingFolderTest, ALivingProcesssFolderIsLeft) {
    const QString folder = MakeFolder(QStringLiteral("pictorel-alive1"), true);
    const int lock = ::open((folder + QStringLiteral("/lock")).toLocal8Bit().constData(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(::flock(lock, LOCK_EX | LOCK_NB), 0);
    MakeOld(folder, 7 * 24 * 3600);
    { const WorkingFolder next; }
    EXPECT_TRUE(QFile::exists(folder + QStringLiteral("/tmpimg_0_1.jpg")));
    ::close(lock);
    { const WorkingFolder next; }
    EXPECT_FALSE(QFileInfo::exists(folder)) << "its owner has gone meanwhile";
}

TEST_F(WorkingFolderTest, AFolderWithoutALockMayBeJustBorn) {
    const QString young = Path(QStringLiteral("pictorel-young1"));
    const QString old = Path(QStringLiteral("pictorel-oldone"));
    ASSERT_TRUE(QDir().mkdir(young) && QDir().mkdir(old));
    MakeOld(old, 600);
    Touch(young + QStringLiteral("/lock.new"));
    const QString broken = Path(QStringLiteral("pictorel-broken")); // its owner died between two steps
    ASSERT_TRUE(QDir().mkdir(broken));
    Touch(broken + QStringLiteral("/lock.new"));
    MakeOld(broken, 600);
    const WorkingFolder next;
    EXPECT_TRUE(QFileInfo::exists(young));
    EXPECT_FALSE(QFileInfo::exists(old));
    EXPECT_FALSE(QFileInfo::exists(broken));
}

TEST_F(WorkingFolderTest, ManyThatStartAtOnceSweepNobody) {
    constexpr int kProcesses = 8;
    constexpr int kRounds = 250;
    for (int i = 0; i < kProcesses; ++i) {
        if (::fork() == 0) {
            bool whole = true;
            for (int round = 0; round < kRounds; ++round) {
                WorkingFolder folder; // sweeps, while others are being made
                const QString path = folder.GetTempFolder();
                ::usleep(200);
                whole = whole && QFile::exists(path + QStringLiteral("lock"));
            }
            ::_exit(whole ? 0 : 1);
        }
    }
    for (int i = 0; i < kProcesses; ++i) {
        int status = -1;
        ASSERT_GT(::wait(&status), 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_TRUE(QDir(temporary_.path()).isEmpty());
}

TEST_F(WorkingFolderTest, PlantedLinksLeadNowhere) {
    const QString treasure = MakeFolder(QStringLiteral("treasure"), true);
    ASSERT_TRUE(QFile::link(treasure, Path(QStringLiteral("pictorel-evil01"))));
    const QString dead = MakeFolder(QStringLiteral("pictorel-dead01"), true);
    ASSERT_TRUE(QFile::link(treasure, dead + QStringLiteral("/inside")));
    const WorkingFolder next;
    EXPECT_TRUE(QFile::exists(treasure + QStringLiteral("/tmpimg_0_1.jpg")));
    EXPECT_TRUE(QFile::exists(treasure + QStringLiteral("/lock")));
    EXPECT_FALSE(QFileInfo::exists(dead));
}

TEST_F(WorkingFolderTest, OnlyItsOwnKindIsSwept) {
    const QString others[]{
        MakeFolder(QStringLiteral("pictorel-2.0.1-source"), false), // a person's, unpacked here
        MakeFolder(QStringLiteral("pictorel-source"), false),
        MakeFolder(QStringLiteral("pictorelle"), true),
        MakeFolder(QStringLiteral("pictorel-2.0"), true),
    };
    for (const QString& other : others) {
        MakeOld(other, 600);
    }
    const QString foreign = MakeFolder(QStringLiteral("pictorel-others"), true);
    const bool isForeign = ::geteuid() == 0 && ::chown(foreign.toLocal8Bit().constData(), 65534, 65534) == 0;
    const WorkingFolder next;
    for (const QString& other : others) {
        EXPECT_TRUE(QFile::exists(other + QStringLiteral("/tmpimg_0_1.jpg"))) << other.toStdString();
    }
    if (isForeign) { // only the system's administrator may give a folder away
        EXPECT_TRUE(QFile::exists(foreign + QStringLiteral("/tmpimg_0_1.jpg")));
    }
}

TEST_F(WorkingFolderTest, IsElsewhereWhereItsPathWouldBeTooLong) {
    // The folder's own name takes 16 characters with the separator before it, and one separator behind it.
    for (const int length : {254, 255, 300}) {
        QString root = temporary_.path();
        while (root.size() + 1 + 16 + 1 < length) {
            const auto room = length - 16 - 1 - root.size() - 1;
            root += u'/' + QString(std::min<qsizetype>(room > 200 ? 100 : room, 200), u'x');
        }
        ASSERT_EQ(root.size() + 17, length);
        ASSERT_TRUE(QDir().mkpath(root));
        const ScopedEnvironment deep("TMPDIR", root);
        WorkingFolder folder;
        const QString path = folder.GetTempFolder();
        EXPECT_EQ(path.startsWith(root + u'/'), length == 254) << length;
        EXPECT_TRUE(QFileInfo(path).isDir() && QDir::isAbsolutePath(path)) << path.toStdString();
        EXPECT_LE(path.size(), 254);
    }
}

TEST_F(WorkingFolderTest, AMissingTemporaryFolderIsNotTheCurrentOne) {
    const QString before = QDir::currentPath();
    const QString mine = MakeFolder(QStringLiteral("pictorel-mine01"), true);
    ASSERT_TRUE(QDir::setCurrent(temporary_.path()));
    {
        const ScopedEnvironment missing("TMPDIR", Path(QStringLiteral("missing")));
        WorkingFolder folder;
        const QString path = folder.GetTempFolder();
        EXPECT_TRUE(path.startsWith(QStringLiteral(P_tmpdir "/pictorel-")) ||
                    path.startsWith(QStringLiteral("/var/tmp/pictorel-")))
            << path.toStdString();
    }
    EXPECT_TRUE(QFileInfo::exists(mine));
    QDir::setCurrent(before);
}

} // namespace
} // namespace pictorel
