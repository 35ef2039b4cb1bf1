// Pictures that come to the window from elsewhere, see PictureDrop.h.
#include "app/PictureDrop.h"

#include "controls/Events.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QTimer>
#include <QUrl>

#include <utility>

namespace pictorel {
namespace {

// The files of this machine among what is dropped.
QStringList FilesIn(const QMimeData* data) {
    QStringList files;
    for (const QUrl& url : data == nullptr ? QList<QUrl>() : data->urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isFile()) {
            files.append(url.toLocalFile());
        }
    }
    return files;
}

} // namespace

PictureDrop::PictureDrop(QWidget& window, const Editor& editor, std::function<bool()> isReady,
                         std::function<void(const PictureArrival&)> open)
    : editor_(editor), isReady_(std::move(isReady)), open_(std::move(open)) {
    window.setAcceptDrops(true);
    window.installEventFilter(this);
}

bool PictureDrop::Takes(const QMimeData* data) const {
    return isReady_() && !FilesIn(data).isEmpty();
}

bool PictureDrop::eventFilter(QObject* watched, QEvent* event) {
    const auto type = event->type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) {
        return QObject::eventFilter(watched, event);
    }
    auto* const drop = static_cast<QDropEvent*>(event);
    if (!Takes(drop->mimeData())) {
        drop->ignore();
        return true;
    }
    drop->setDropAction(Qt::CopyAction); // the file stays where it is, whatever its owner proposes
    drop->accept();
    if (type == QEvent::Drop) {
        QTimer::singleShot(0, this, [this, files = FilesIn(drop->mimeData())] { Open(FirstOf(files)); });
    }
    return true;
}

void PictureDrop::Open(const PictureArrival& arrival) {
    constexpr int kLookAgain = 20; // milliseconds
    if (editor_.IsBusy() || !isReady_()) {
        QTimer::singleShot(kLookAgain, this, [this, arrival] { Open(arrival); });
    } else {
        Events::Guarded([&] { open_(arrival); })();
    }
}

} // namespace pictorel
