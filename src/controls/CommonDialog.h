// The Open and Save file dialogs.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class QFileDialog;
class QWidget;

namespace pictorel {

// Settings are made before a dialog is shown and stay. FileName is the name that a Save dialog proposes, in
// InitDir, and holds the choice afterwards, empty when the person cancelled. The desktop's own dialog and the
// toolkit's are used alike.
class CommonDialog {
  public:
    explicit CommonDialog(QWidget* owner) : owner_(owner) {}

    // "description|patterns|description|patterns|", patterns separated by ";".
    QString Filter;
    // Further extensions that a saved file may have. A name with any other gets that of the chosen entry.
    QStringList OtherExtensions;
    int FilterIndex = 1; // from 1
    // Bits of the standard open and save dialogs: 0x2 asks before overwriting, 0x200 takes several files,
    // 0x800 and 0x1000 refuse paths and files that do not exist.
    unsigned Flags = 0;
    int MaxFileSize = 260;
    bool CancelError = false; // always False here: cancelling is an empty name, not an error
    QString FileName;
    QString InitDir; // a folder, or a file in it

    void ShowOpen();
    void ShowSave();

  private:
    void Prepare(QFileDialog& dialog);
    bool MayReplace(const QString& fileName) const;

    QWidget* owner_;
};

} // namespace pictorel
