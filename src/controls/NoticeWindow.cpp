// Paints a fading notice, see NoticeWindow.h.
#include "controls/NoticeWindow.h"

#include "controls/Compositor.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>

namespace pictorel {
namespace {

QPixmap ScreenAt(const QRect& place) {
    QScreen* screen = QGuiApplication::screenAt(place.center());
    screen = screen != nullptr ? screen : QGuiApplication::primaryScreen();
    const QPoint corner = place.topLeft() - screen->geometry().topLeft();
    return screen->grabWindow(0, corner.x(), corner.y(), place.width(), place.height());
}

} // namespace

NoticeWindow::NoticeWindow(QWidget* owner, const NoticePicture& picture, const QRect& place)
    : QWidget(owner, Qt::ToolTip | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint |
                         Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus),
      picture_(picture) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    if (HasCompositor()) {
        setAttribute(Qt::WA_TranslucentBackground);
    } else {
        setAttribute(Qt::WA_OpaquePaintEvent);
        behind_ = ScreenAt(place);
    }
    setGeometry(place);
}

void NoticeWindow::SetFade(double opacity) {
    if (opacity != opacity_) {
        opacity_ = opacity;
        update();
    }
}

void NoticeWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!behind_.isNull()) {
        painter.drawPixmap(rect(), behind_);
    }
    painter.setOpacity(opacity_);
    const bool dense = devicePixelRatioF() > 1 && !picture_.dense.isNull();
    painter.drawPixmap(rect(), dense ? picture_.dense : picture_.standard);
}

} // namespace pictorel
