// The update notice: what is new in the versions that are newer than the running one.
#pragma once

#include "notices/PlaySound.h"
#include "notices/StringTable.h"

#include <QByteArray>
#include <QDialog>
#include <QIcon>
#include <QLayout>

namespace pictorel {

class frmUpdates : public QDialog {
    Q_OBJECT

  public:
    // `sound`, a WAVE file, is played each time the notice becomes the active window.
    frmUpdates(QWidget* owner, const StringTable& strings, const QString& notes, const QIcon& icon,
               const QByteArray& sound, PlaySound& player);

    // The person chose "Update Now": the download page was opened.
    bool DownloadChosen() const { return downloadChosen_; }

  protected:
    void changeEvent(QEvent* event) override;

  private:
    QLayout* MakeHeading(const StringTable& strings, const QIcon& icon);
    QLayout* MakeButtons();
    void Cmd_Msg_Click(int index);

    const StringTable& strings_;
    QByteArray sound_;
    PlaySound& player_;
    bool downloadChosen_ = false;
};

} // namespace pictorel
