// The Open and Save file dialogs.
#pragma once

#include <QObject>
#include <QString>

class QFileDialog;
class QWidget;

namespace pictorel {

// Settings are made before a dialog is shown and stay; FileName holds the choice afterwards, empty when the
// person cancelled.
class CommonDialog {
  public:
    explicit CommonDialog(QWidget* owner) : owner_(owner) {}

    // "description|patterns|description|patterns|", patterns separated by ";".
    QString Filter;
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
    void Run(QFileDialog& dialog, bool saving);

    QWidget* owner_;
};

} // namespace pictorel
