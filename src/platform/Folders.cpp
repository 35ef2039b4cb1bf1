// The folders on disk that the editor uses, see Folders.h.
#include "platform/Folders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <array>
#include <utility>

namespace pictorel {
namespace {

// The installed layout as the build knows it, from the folder of the programs: "../share/pictorel" and so on.
constexpr QLatin1String kDataFromPrograms(PICTOREL_DATA_FROM_PROGRAMS);
constexpr QLatin1String kHelpersFromPrograms(PICTOREL_HELPERS_FROM_PROGRAMS);

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

} // namespace pictorel
