// A passive notice, see PopupControl.h.
#include "controls/PopupControl.h"

#include "controls/Control.h"

#include <QFile>
#include <QFileInfo>

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

QString DenseCompanion(const QString& fileName) {
    const QFileInfo file(fileName);
    return file.path() + u'/' + file.completeBaseName() + QStringLiteral("@2x.") + file.suffix();
}

PopupControl::PopupControl(QWidget* owner, const QString& name) : QObject(owner), owner_(owner) {
    setObjectName(name);
    ticker_.setTimerType(Qt::PreciseTimer);
    ticker_.setInterval(kTick);
    connect(&ticker_, &QTimer::timeout, this, &PopupControl::Tick);
}

PopupControl::~PopupControl() = default;

void PopupControl::AddPicture(const QString& fileName, int id) {
    const QPixmap picture(fileName);
    if (picture.isNull()) {
        throw ControlError("The picture file " + fileName.toStdString() + " cannot be loaded.");
    }
    const QString dense = DenseCompanion(fileName);
    pictures_[id] = {picture, QFile::exists(dense) ? QPixmap(dense) : QPixmap()};
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
    const QRect place(static_cast<int>(std::lround(anchorX_)) - width_,
                      static_cast<int>(std::lround(anchorY_)) - height_, width_, height_);
    window_ = std::make_unique<NoticeWindow>(owner_, pictures_[background_], place);
    window_->setObjectName(objectName() + QStringLiteral("_Window"));
    window_->show();
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
    window_->SetFade(std::clamp(std::min(age, left) / fade, 0.0, 1.0) * opacity_ / kOpaque);
}

void PopupControl::Close() {
    ticker_.stop();
    window_.reset();
}

} // namespace pictorel
