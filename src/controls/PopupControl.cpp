// A passive notice, see PopupControl.h.
#include "controls/PopupControl.h"

#include "controls/Control.h"

#include <QLabel>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace pictorel {
namespace {

constexpr int kTick = 16; // milliseconds
constexpr double kOpaque = 255.0;

qint64 Now() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

PopupControl::PopupControl(QWidget* owner, const QString& name) : QObject(owner), owner_(owner) {
    setObjectName(name);
    ticker_.setInterval(kTick);
    connect(&ticker_, &QTimer::timeout, this, &PopupControl::Tick);
}

PopupControl::~PopupControl() = default;

void PopupControl::AddPicture(const QString& fileName, int id) {
    const QPixmap picture(fileName);
    if (picture.isNull()) {
        throw ControlError("The picture file " + fileName.toStdString() + " cannot be loaded.");
    }
    pictures_[id] = picture;
}

void PopupControl::SetSize(int width, int height) {
    width_ = width;
    height_ = height;
}

void PopupControl::SetAnchor(double x, double y) {
    anchorX_ = x;
    anchorY_ = y;
}

void PopupControl::Show() {
    auto label =
        std::make_unique<QLabel>(owner_, Qt::ToolTip | Qt::FramelessWindowHint |
                                             Qt::WindowTransparentForInput | Qt::WindowDoesNotAcceptFocus);
    label->setAttribute(Qt::WA_TranslucentBackground);
    label->setAttribute(Qt::WA_ShowWithoutActivating);
    label->setStyleSheet(QStringLiteral("background: transparent; border: none; padding: 0;"));
    label->setPixmap(pictures_[background_]);
    label->setScaledContents(true);
    label->setGeometry(static_cast<int>(std::lround(anchorX_)) - width_,
                       static_cast<int>(std::lround(anchorY_)) - height_, width_, height_);
    label->setWindowOpacity(0);
    label->show();
    window_ = std::move(label);
    shownAt_ = Now();
    ticker_.start();
    Tick();
}

void PopupControl::Tick() {
    const auto age = static_cast<double>(Now() - shownAt_);
    const double left = 2.0 * animation_ + display_ - age;
    if (left <= 0) {
        Close();
        return;
    }
    const double fade = std::max(animation_, 1);
    window_->setWindowOpacity(std::clamp(std::min(age, left) / fade, 0.0, 1.0) * opacity_ / kOpaque);
}

void PopupControl::Close() {
    ticker_.stop();
    window_.reset();
}

} // namespace pictorel
