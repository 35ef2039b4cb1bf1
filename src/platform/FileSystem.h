// Deleting, renaming and naming files; failures are exceptions.
#pragma once

#include <QString>

#include <stdexcept>

namespace pictorel {

struct FileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class FileSystem {
  public:
    // Deletes the file, write-protected or not. Throws FileError where there is none or it stays.
    void Delete(const QString& fileName) const;

    // Renames the file. Throws FileError where there is none, or where the target exists and is another file.
    void Move(const QString& from, const QString& to) const;

    // The extension without its dot: "jpg" of "a.b.jpg", empty where there is none.
    QString ExtensionOf(const QString& fileName) const;
};

} // namespace pictorel
