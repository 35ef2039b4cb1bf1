// The folders on disk that the editor uses: its own, the user's, and a private one for working files.
#pragma once

#include <QString>

namespace pictorel {

// The folder that holds the editor's pictures ("pics") and its skin, without a trailing separator: where it
// is installed, share/pictorel beside the folder of the program, wherever that prefix has been moved to; in a
// build folder, which has them beside the program, the program's own.
QString ApplicationFolder();

// The path of a program that the editor starts, such as "pictorel_scanner": libexec/pictorel where the editor
// is installed, beside the editor otherwise. It need not exist.
QString HelperProgram(const QString& name);

// The same two for an editor whose program stands in `programFolder`.
QString ApplicationFolderOf(const QString& programFolder);
QString HelperProgramOf(const QString& programFolder, const QString& name);

// A path written with backslashes ("\pics\img_open.png") in the platform's form. The one place that does so.
QString PlatformPath(const QString& path);

// Numbers of the user's folders, as desktop shells number them.
inline constexpr int kDocumentsFolder = 5;
inline constexpr int kDesktopFolder = 16;
inline constexpr int kPicturesFolder = 39;

// The user's folder of that number followed by one separator; empty where there is none or it does not exist.
QString GetSpecialPath(int folderNumber);

// The folder of this process's working files: inside the system's temporary folder, readable by this user
// only, so that two running editors never touch each other's history. It is removed with the object. Folders
// left behind by dead processes are swept when one is made; a living owner holds a lock on its own.
class WorkingFolder {
  public:
    WorkingFolder();
    ~WorkingFolder();
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    // The folder's path with its trailing separator. Asked afresh at every call: a folder that somebody
    // deleted is made again. Where the temporary folder cannot take it, or its path would not fit 255
    // characters, the system's own folders (/tmp, /var/tmp) are asked; empty where none of them can.
    QString GetTempFolder();

    // Removes the folder before its time, for a process that ends past its objects.
    void Remove() noexcept;

  private:
    void Create();

    QString path_;
    int lock_ = -1; // descriptor of the lock file inside, held for the life of the process
};

} // namespace pictorel
