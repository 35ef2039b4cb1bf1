// The working files' folder, see WorkingFolder.h.
#include "platform/WorkingFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStorageInfo>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace pictorel {
namespace {

constexpr int kLongestPath = 254; // a buffer of 255 characters with its closing zero
constexpr int kSecondsToSettle = 60;
constexpr QLatin1String kFolderPattern("pictorel-??????"); // as mkdtemp fills in the template below
constexpr QLatin1String kLockName("lock");
constexpr QLatin1String kUnbornLockName("lock.new");

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

// The folders for temporary files: the person's choice, then the one that is kept when the machine starts
// anew if it has room, then the others. Qt gives an empty path where TMPDIR names a folder that does not
// exist; taken as a path, that would be the current folder, which is not ours to sweep.
QStringList TemporaryRoots() {
    constexpr qint64 kRoomForAHistory = qint64{2} << 30; // bytes
    const QString kept = QStringLiteral("/var/tmp");
    QStringList roots;
    const auto add = [&](const QString& root) {
        if (QDir::isAbsolutePath(root) && QFileInfo(root).isDir() && !roots.contains(root)) {
            roots << root;
        }
    };
    if (qEnvironmentVariableIsSet("TMPDIR")) {
        add(QDir::tempPath());
    }
    if (QStorageInfo(kept).bytesAvailable() >= kRoomForAHistory) {
        add(kept);
    }
    for (const QString& root : {QDir::tempPath(), QStringLiteral(P_tmpdir), kept}) {
        add(root);
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

QFileInfoList WorkingFoldersIn(const QString& root) {
    return QDir(root).entryInfoList({kFolderPattern}, QDir::Dirs | QDir::NoDotAndDotDot | QDir::NoSymLinks);
}

bool IsRecoverable(const QString& folder) {
    return QFileInfo::exists(folder + u'/' + kRecoveryRecord);
}

void SweepAbandonedFolders(const QString& root) {
    for (const QFileInfo& folder : WorkingFoldersIn(root)) {
        if (!IsRecoverable(folder.filePath()) && IsAbandoned(folder)) {
            QDir(folder.filePath()).removeRecursively();
        }
    }
}

} // namespace

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
    Unlock();
}

void WorkingFolder::RemoveUnlessRecoverable() noexcept {
    if (IsRecoverable(path_)) {
        path_.clear();
        Unlock();
    } else {
        Remove();
    }
}

void WorkingFolder::Unlock() noexcept {
    if (lock_ >= 0) {
        ::close(lock_);
        lock_ = -1;
    }
}

AbandonedFolder::~AbandonedFolder() {
    if (lock_ >= 0) {
        ::close(lock_);
    }
}

QDateTime AbandonedFolder::LastWritten() const {
    return QFileInfo(Path(kRecoveryRecord)).lastModified();
}

void AbandonedFolder::Remove() noexcept {
    QDir(path_).removeRecursively();
}

std::vector<AbandonedFolder> TakeAbandonedFolders() {
    std::vector<AbandonedFolder> taken;
    for (const QString& root : TemporaryRoots()) {
        for (const QFileInfo& folder : WorkingFoldersIn(root)) {
            const bool isOurs = folder.ownerId() == ::getuid() && IsRecoverable(folder.filePath());
            const int lock = isOurs ? OpenLock(folder.filePath(), kLockName, 0) : -1;
            if (lock >= 0 && ::flock(lock, LOCK_EX | LOCK_NB) == 0) {
                taken.emplace_back(folder.filePath(), lock);
            } else if (lock >= 0) {
                ::close(lock);
            }
        }
    }
    std::stable_sort(taken.begin(), taken.end(),
                     [](const AbandonedFolder& one, const AbandonedFolder& other) {
                         return one.LastWritten() > other.LastWritten();
                     });
    return taken;
}

} // namespace pictorel
