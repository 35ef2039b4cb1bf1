// How long the picture view takes to draw a 24-megapixel photo: through the window as a person drags slider
// and picture, and by itself on a zoom sweep and pans.
#include "BenchWindow.h"
#include "controls/Slider.h"
#include "picture/PixelArray.h"
#include "view/PictureViewControl.h"

#include <QApplication>
#include <QMouseEvent>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

using pictorel::PictureView;
using pictorel::PixelArray;

constexpr int kWidth = 6000;
constexpr int kHeight = 4000;

PixelArray MakePicture(bool transparent) {
    PixelArray picture(kWidth, kHeight);
    picture.SetHasAlpha(transparent);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < kHeight; ++y) {
        std::uint8_t* const row = rows + y * picture.Stride();
        for (int x = 0; x < kWidth; ++x) {
            row[4 * x] = static_cast<std::uint8_t>(x * y >> 8);
            row[4 * x + 1] = static_cast<std::uint8_t>(x + 3 * y);
            row[4 * x + 2] = static_cast<std::uint8_t>((x ^ y) * 7);
            row[4 * x + 3] = transparent ? static_cast<std::uint8_t>(x / 8 + y / 4) : 255;
        }
    }
    return picture;
}

double Milliseconds(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void Report(const char* name, std::vector<double> times) {
    std::sort(times.begin(), times.end());
    std::printf("  %-28s median %6.1f ms   worst %6.1f ms   (%zu frames)\n", name, times[times.size() / 2],
                times.back(), times.size());
}

void Measure(PictureView& view, bool transparent) {
    const PixelArray picture = MakePicture(transparent);
    std::printf("%s, %d x %d in a view of %d x %d\n", transparent ? "transparent" : "opaque", kWidth, kHeight,
                view.width(), view.height());
    for (int run = 0; run < 3; ++run) {
        view.Show(PixelArray());
        view.repaint();
        std::printf("  first frame at fit zoom      %6.1f ms\n", Milliseconds([&] {
                        view.Show(picture);
                        view.FitNew();
                        view.repaint();
                    }));
    }
    const auto frame = [&](double zoom, double x, double y) {
        view.SetZoom(zoom);
        view.SetCentreX(x);
        view.SetCentreY(y);
        return Milliseconds([&] { view.repaint(); });
    };
    constexpr int kSweepFrames = 350;
    std::vector<double> sweep;
    sweep.reserve(kSweepFrames);
    for (int step = 0; step < kSweepFrames; ++step) {
        sweep.push_back(
            frame(0.01 * std::pow(1000.0, step / (kSweepFrames - 1.0)), 0.5 * kWidth, 0.5 * kHeight));
    }
    Report("zoom 1 % .. 1000 %", sweep);
    for (const double zoom : {0.15, 0.26, 0.3, 0.51, 0.7, 1.0, 1.01, 1.5, 2.0, 4.0}) {
        std::vector<double> pan;
        pan.reserve(60);
        for (int step = 0; step < 60; ++step) {
            pan.push_back(frame(zoom, 0.5 * kWidth + 9.0 * step / zoom, 0.5 * kHeight + 4.0 * step / zoom));
        }
        char name[32];
        std::snprintf(name, sizeof name, "pan at %.0f %%", zoom * 100);
        Report(name, pan);
    }
}

// What a person does in the window: events go in as the mouse sends them, and a frame is over when everything
// they set off has been painted.
class Hand {
  public:
    explicit Hand(QWidget& widget) : widget_(widget) {}

    double Send(QEvent::Type type, QPointF at) {
        const auto buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
        const auto button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
        QMouseEvent event(type, at, widget_.mapToGlobal(at), button, buttons, Qt::NoModifier);
        return Milliseconds([&] {
            QApplication::sendEvent(&widget_, &event);
            QApplication::processEvents();
        });
    }

    // The frame times of a drag along a line, without the first frame's.
    std::vector<double> Drag(QPointF from, QPointF step, int steps) {
        Send(QEvent::MouseButtonPress, from);
        std::vector<double> times;
        for (int i = 1; i <= steps; ++i) {
            times.push_back(Send(QEvent::MouseMove, from + i * step));
        }
        Send(QEvent::MouseButtonRelease, from + steps * step);
        times.erase(times.begin());
        return times;
    }

  private:
    QWidget& widget_;
};

void MeasureWindow() {
    pictorel::bench::BenchWindow editor;
    auto& document = editor.Window().Document();
    auto& view = editor.Get<pictorel::PictureViewControl>("ImageView");
    const PixelArray picture = MakePicture(false);
    document.ImageWidth(0) = kWidth;
    document.ImageHeight(0) = kHeight;
    std::printf("window of %d x %d, view of %d x %d\n", editor.Window().width(), editor.Window().height(),
                view.width(), view.height());
    for (int run = 0; run < 3; ++run) {
        view.Show(PixelArray());
        QApplication::processEvents();
        PixelArray edited = picture;
        edited.WritableRows()[0] ^= 1;
        const double load = Milliseconds([&] {
            view.Show(picture);
            view.FitNew();
            QApplication::processEvents();
        });
        const double edit = Milliseconds([&] {
            view.Show(edited);
            QApplication::processEvents();
        });
        std::printf("  first frame after a load %6.1f ms   after an edit %6.1f ms\n", load, edit);
    }
    auto& slider = editor.Get<pictorel::Slider>("Slider_ImageZoom");
    slider.SetEnabled(true);
    slider.SetValue(1);
    const double middle = slider.height() / 2.0;
    Report("zoom slider, whole range", Hand(slider).Drag({7, middle}, {0.5, 0}, 2 * (slider.width() - 14)));
    for (const double zoom : {0.3, 0.5, 0.7, 1.0, 1.5, 2.0, 4.0, 10.0}) {
        view.SetZoom(zoom);
        view.SetCentreX(0.5 * kWidth);
        view.SetCentreY(0.5 * kHeight);
        QApplication::processEvents();
        char name[32];
        std::snprintf(name, sizeof name, "dragged at %.0f %%", zoom * 100);
        Report(name, Hand(view).Drag({900, 700}, {-9, -4}, 60));
    }
}

} // namespace

int main(int count, char** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, words);
    pictorel::bench::UseNoScreen();
    MeasureWindow();
    PictureView view;
    view.resize(1500, 900);
    view.show();
    QApplication::processEvents();
    Measure(view, false);
    Measure(view, true);
    return 0;
}
