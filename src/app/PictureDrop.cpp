// Pictures dropped on the window, see PictureDrop.h.
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

// The first file that is dropped; empty where that is none that can be opened.
QString FirstFile(const QMimeData* data) {
    const auto urls = data == nullptr ? QList<QUrl>() : data->urls();
    if (urls.isEmpty() || !urls.first().isLocalFile()) {
        return {};
    }
    QString fileName = urls.first().toLocalFile();
    return QFileInfo(fileName).isFile() ? fileName : QString();
}

} // namespace

PictureDrop::PictureDrop(QWidget& window, const Editor& editor, std::function<bool()> isReady,
                         std::function<void(const QString&)> open)
    : editor_(editor), isReady_(std::move(isReady)), open_(std::move(open)) {
    window.setAcceptDrops(true);
    window.installEventFilter(this);
}

bool PictureDrop::Takes(const QMimeData* data) const {
    return isReady_() && !FirstFile(data).isEmpty();
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
        QTimer::singleShot(0, this,
                           [this, fileName = FirstFile(drop->mimeData())] { OpenWhenIdle(fileName); });
    }
    return true;
}

void PictureDrop::OpenWhenIdle(const QString& fileName) {
    constexpr int kLookAgain = 20; // milliseconds
    if (editor_.IsBusy()) {
        QTimer::singleShot(kLookAgain, this, [this, fileName] { OpenWhenIdle(fileName); });
    } else if (isReady_()) {
        Events::Guarded([&] { open_(fileName); })();
    }
}

} // namespace pictorel
