// The folders on disk that the editor uses: its own and the user's.
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

} // namespace pictorel
