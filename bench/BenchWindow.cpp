// The real window as the benchmarks drive it, see BenchWindow.h.
#include "BenchWindow.h"

#include <QApplication>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace pictorel::bench {

double Seconds(const QElapsedTimer& clock) {
    return static_cast<double>(clock.nsecsElapsed()) * 1e-9;
}

double Timed(const std::function<void()>& work) {
    QElapsedTimer clock;
    clock.start();
    work();
    return Seconds(clock);
}

double Figure::Least() const {
    return *std::min_element(seconds.begin(), seconds.end());
}

double Figure::Median() const {
    std::vector<double> sorted = seconds;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    return *middle;
}

void PrintRatio(const Figure& ours, const Figure& peer) {
    std::printf("%-42s %8.0f ms  peer %8.0f ms  ratio %.2f (medians %.0f, %.0f)\n", ours.name.c_str(),
                ours.Least() * 1e3, peer.Least() * 1e3, ours.Least() / peer.Least(), ours.Median() * 1e3,
                peer.Median() * 1e3);
}

void PaintWatch::Begin() {
    clock_.start();
    last_ = 0;
}

bool PaintWatch::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Paint && clock_.isValid() && !inside_) {
        inside_ = true;
        watched->event(event); // paints now, so that the clock is read afterwards
        inside_ = false;
        last_ = Seconds(clock_);
        return true;
    }
    return false;
}

BenchWindow::BenchWindow() {
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [this] {
        window_.findChild<PopupControl*>(QStringLiteral("PopupControl_Splash"))->Close();
    });
    closer.start(1);
    window_.Start().Form_Load({});
    closer.stop();
    window_.showNormal();
    window_.resize(1920, 1080);
    while (!Get("Cmd_Panel", 0).IsEnabled()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

Control& BenchWindow::Find(const char* name, int index) {
    const QString single = QString::fromLatin1(name);
    for (const QString& wanted : {QStringLiteral("%1_%2").arg(single).arg(index), single}) {
        if (auto* const control = dynamic_cast<Control*>(window_.findChild<QWidget*>(wanted))) {
            return *control;
        }
    }
    throw ControlError(std::string(name) + ": there is no such control");
}

BenchWindow::~BenchWindow() {
    window_.Document().ImageModified(0) = false;
    window_.close();
}

void BenchWindow::Open(const QString& fileName, PaintWatch& watch) {
    window_.Document().ImageModified(0) = false;
    constexpr int kDialogIsUp = 50; // ms
    QTimer::singleShot(kDialogIsUp, [&watch, fileName] {
        auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(fileName);
        watch.Begin();
        QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
    });
    Get("Cmd_Panel", 0).click();
    QApplication::processEvents();
}

void UseNoScreen() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("PICTOREL_UPDATE_URL", ""); // what is measured waits for no network
    QApplication::setStyle(QStringLiteral("Fusion"));
}

} // namespace pictorel::bench
