// Deleting, renaming and naming files, see FileSystem.h.
#include "platform/FileSystem.h"

#include <QFile>
#include <QFileInfo>

namespace pictorel {

void FileSystem::Delete(const QString& fileName) const {
    QFile file(fileName);
    if (!file.remove()) {
        throw FileError("The file " + fileName.toStdString() +
                        " cannot be deleted: " + file.errorString().toStdString());
    }
}

void FileSystem::Move(const QString& from, const QString& to) const {
    if (from == to) {
        return;
    }
    QFile file(from);
    if (!file.rename(to)) {
        throw FileError("The file " + from.toStdString() +
                        " cannot be renamed: " + file.errorString().toStdString());
    }
}

QString FileSystem::ExtensionOf(const QString& fileName) const {
    return QFileInfo(fileName).suffix();
}

} // namespace pictorel
