// A private folder for this process's working files, and those that dead processes left with something to
// recover.
#pragma once

#include <QDateTime>
#include <QString>

#include <utility>
#include <vector>

namespace pictorel {

// The file in a working folder that says what its history is, while the picture has changes that are not
// saved. A dead process's folder that has one is kept until the person has answered.
inline constexpr QLatin1String kRecoveryRecord("recovery");

// Inside the system's folder for temporary files, readable by this user only, so that two running editors
// never touch each other's history: the one that TMPDIR names or, so that what is to be recovered outlives a
// restart of the machine, the one that is kept then. It is removed with the object. Folders left behind by
// dead processes are swept when one is made, unless there is something to recover; a living owner holds a
// lock on its own.
class WorkingFolder {
  public:
    WorkingFolder();
    ~WorkingFolder();
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    // The folder's path with its trailing separator. Asked afresh at every call: a folder that somebody
    // deleted is made again. Where the first folder for temporary files cannot take it, or its path would not
    // fit 255 characters, the next is asked; empty where none of them can.
    QString GetTempFolder();

    // Removes the folder before its time, for a process that ends past its objects.
    void Remove() noexcept;

    // As Remove, but what could be recovered from stays for the next start.
    void RemoveUnlessRecoverable() noexcept;

  private:
    void Create();
    void Unlock() noexcept;

    QString path_;
    int lock_ = -1; // descriptor of the lock file inside, held for the life of the process
};

// A dead process's working folder with a recovery record. While the object lives, no other editor takes it.
class AbandonedFolder {
  public:
    AbandonedFolder(QString path, int lock) : path_(std::move(path)), lock_(lock) {}
    ~AbandonedFolder();
    AbandonedFolder(AbandonedFolder&& other) noexcept
        : path_(std::move(other.path_)), lock_(std::exchange(other.lock_, -1)) {}
    AbandonedFolder& operator=(AbandonedFolder&& other) noexcept {
        std::swap(path_, other.path_);
        std::swap(lock_, other.lock_);
        return *this;
    }

    QString Path(const QString& name) const { return path_ + u'/' + name; }
    QDateTime LastWritten() const; // when the record was

    void Remove() noexcept; // the folder and all that is in it

  private:
    QString path_;
    int lock_;
};

// Those of this user, the one that was at work last first.
std::vector<AbandonedFolder> TakeAbandonedFolders();

} // namespace pictorel
