// Pictures that come to the window from elsewhere: dropped on it, or named on the command line.
#pragma once

#include "commands/PictureArrival.h"
#include "editor/Editor.h"

#include <QObject>
#include <QString>
#include <QWidget>

#include <functional>

class QMimeData;

namespace pictorel {

// Takes files dropped anywhere on the window. What is no file of this machine, and everything while the
// editor is not ready, gets the refusing pointer. The file is opened after the drop and whatever command runs
// have ended, so that the program it came from need not wait for the questions that opening may ask.
class PictureDrop : public QObject {
    Q_OBJECT

  public:
    PictureDrop(QWidget& window, const Editor& editor, std::function<bool()> isReady,
                std::function<void(const PictureArrival&)> open);

    // Opens it as if it were dropped, as soon as the editor is ready.
    void Open(const PictureArrival& arrival);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool Takes(const QMimeData* data) const;

    const Editor& editor_;
    std::function<bool()> isReady_;
    std::function<void(const PictureArrival&)> open_;
};

} // namespace pictorel
