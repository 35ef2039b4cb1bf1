// The folders on disk that the editor uses, see Folders.h.
#include "platform/Folders.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <utility>

namespace pictorel {
namespace {

constexpr int kLongestPath = 254; // a buffer of 255 characters with its closing zero
constexpr int kSecondsToSettle = 60;
constexpr QLatin1String kFolderPattern("pictorel-??????"); // as mkdtemp fills in the template below
constexpr QLatin1String kLockName("lock");
constexpr QLatin1String kUnbornLockName("lock.new");

// The installed layout as the build knows it, from the folder of the programs: "../share/pictorel" and so on.
constexpr QLatin1String kDataFromPrograms(PICTOREL_DATA_FROM_PROGRAMS);
constexpr QLatin1String kHelpersFromPrograms(PICTOREL_HELPERS_FROM_PROGRAMS);

int OpenLock(const QString& folder, const QString& name, int flags) {
    return ::open(QFile::encodeName(folder + u'/' + name).constData(),
                  O_RDWR | O_CLOEXEC | O_NOFOLLOW | flags, S_IRUSR | S_IWUSR);
}

// Holds the folder's lock from the moment the lock can be seen: it takes its name only when it is held, so
// nobody who sweeps finds it free. -1 where the folder cannot be locked.
int MakeLock(const QString& folder) {
    const int lock = OpenLock(folder, kUnbornLockName, O_CREAT);
    if (lock >= 0) {
        ::flock(lock, LOCK_EX | LOCK_NB);
        QFile::rename(folder + u'/' + kUnbornLockName, folder + u'/' + kLockName);
    }
    return lock;
}

// The folders for temporary files, the person's choice first. Qt gives an empty path where TMPDIR names a
// folder that does not exist; taken as a path, that would be the current folder, which is not ours to sweep.
QStringList TemporaryRoots() {
    QStringList roots;
    for (const QString& root : {QDir::tempPath(), QStringLiteral(P_tmpdir), QStringLiteral("/var/tmp")}) {
        if (QDir::isAbsolutePath(root) && QFileInfo(root).isDir() && !roots.contains(root)) {
            roots << root;
        }
    }
    return roots;
}

// Whether the folder is ours and nobody alive holds its lock. One without a lock may be a second old; if it
// is not, only an empty one, or one whose owner died while locking it, is surely no folder of the person's
// own that happens to have such a name.
bool IsAbandoned(const QFileInfo& folder) {
    if (folder.isSymLink() || folder.ownerId() != ::getuid()) {
        return false;
    }
    const int lock = OpenLock(folder.filePath(), kLockName, 0);
    if (lock < 0) {
        const QStringList content =
            QDir(folder.filePath())
                .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
        return folder.lastModified().secsTo(QDateTime::currentDateTime()) > kSecondsToSettle &&
               (content.isEmpty() || content == QStringList(kUnbornLockName));
    }
    const bool free = ::flock(lock, LOCK_EX | LOCK_NB) == 0;
    ::close(lock);
    return free;
}

void SweepAbandonedFolders(const QString& root) {
    const auto folders =
        QDir(root).entryInfoList({kFolderPattern}, QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
    for (const QFileInfo& folder : folders) {
        if (IsAbandoned(folder)) {
            QDir(folder.filePath()).removeRecursively();
        }
    }
}

} // namespace

QString ApplicationFolder() {
    return ApplicationFolderOf(QCoreApplication::applicationDirPath());
}

QString HelperProgram(const QString& name) {
    return HelperProgramOf(QCoreApplication::applicationDirPath(), name);
}

QString ApplicationFolderOf(const QString& programFolder) {
    const QString installed = QDir::cleanPath(programFolder + u'/' + kDataFromPrograms);
    return QFileInfo(installed).isDir() ? installed : programFolder;
}

QString HelperProgramOf(const QString& programFolder, const QString& name) {
    const QString installed = QDir::cleanPath(programFolder + u'/' + kHelpersFromPrograms + u'/' + name);
    return QFileInfo(installed).isExecutable() ? installed : programFolder + u'/' + name;
}

QString PlatformPath(const QString& path) {
    QString result = path;
    return result.replace(u'\\', QDir::separator());
}

QString GetSpecialPath(int folderNumber) {
    constexpr std::array<std::pair<int, QStandardPaths::StandardLocation>, 3> kFolders{{
        {kPicturesFolder, QStandardPaths::PicturesLocation},
        {kDocumentsFolder, QStandardPaths::DocumentsLocation},
        {kDesktopFolder, QStandardPaths::DesktopLocation},
    }};
    for (const auto& [number, location] : kFolders) {
        if (number != folderNumber) {
            continue;
        }
        const QString path = QStandardPaths::writableLocation(location);
        if (!path.isEmpty() && QFileInfo(path).isDir()) {
            return QDir::cleanPath(path) + QDir::separator();
        }
    }
    return {};
}

WorkingFolder::WorkingFolder() {
    for (const QString& root : TemporaryRoots()) {
        SweepAbandonedFolders(root);
    }
    Create();
}

WorkingFolder::~WorkingFolder() {
    Remove();
}

QString WorkingFolder::GetTempFolder() {
    if (path_.isEmpty() || !QFileInfo(path_).isDir()) {
        Remove();
        Create();
    }
    return path_.isEmpty() ? QString() : path_ + QDir::separator();
}

// In the first of the folders that takes it.
void WorkingFolder::Create() {
    for (const QString& root : TemporaryRoots()) {
        QByteArray name = QFile::encodeName(root + QStringLiteral("/pictorel-XXXXXX"));
        if (name.size() + 1 <= kLongestPath && ::mkdtemp(name.data()) != nullptr) { // mode 0700
            path_ = QFile::decodeName(name);
            lock_ = MakeLock(path_);
            return;
        }
    }
}

void WorkingFolder::Remove() noexcept {
    if (!path_.isEmpty()) {
        QDir(path_).removeRecursively();
        path_.clear();
    }
    if (lock_ >= 0) {
        ::close(lock_);
        lock_ = -1;
    }
}

} // namespace pictorel
