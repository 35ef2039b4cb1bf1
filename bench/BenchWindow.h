// The real window as the benchmarks drive it, without a window system.
#pragma once

#include "app/frmMain.h"

#include <QElapsedTimer>
#include <QObject>
#include <QString>

#include <functional>
#include <string>
#include <vector>

namespace pictorel::bench {

double Seconds(const QElapsedTimer& clock);
double Timed(const std::function<void()>& work); // seconds

// The times of several rounds of one thing, in seconds.
struct Figure {
    std::string name;
    std::vector<double> seconds;

    double Least() const;
    double Median() const;
};

// One line: ours beside the peer's, and the ratio of the least times.
void PrintRatio(const Figure& ours, const Figure& peer);

// Tells when a widget has been painted.
class PaintWatch : public QObject {
  public:
    explicit PaintWatch(QWidget& view) { view.installEventFilter(this); }

    void Begin();
    double LastPaint() const { return last_; } // seconds after Begin

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QElapsedTimer clock_;
    double last_ = 0;
    bool inside_ = false;
};

// Started, with the size of a full-HD screen and Open enabled. A QApplication must be there.
class BenchWindow {
  public:
    BenchWindow();
    ~BenchWindow(); // closes without a question

    frmMain& Window() { return window_; }
    // The control of this name, or element of the control array.
    template <typename T = PushButton>
    T& Get(const char* name, int index = 0) {
        return dynamic_cast<T&>(Find(name, index));
    }

    // Runs the Open command with the dialog answered; the watch begins with the answer.
    void Open(const QString& fileName, PaintWatch& watch);

  private:
    Control& Find(const char* name, int index);

    frmMain window_;
};

// Makes the application for the offscreen platform; call it first in main.
void UseNoScreen();

} // namespace pictorel::bench
