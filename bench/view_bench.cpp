// How long the picture view takes to draw: the first frame of a 24-megapixel photo, a zoom sweep, and pans.
#include "imaging/PixelArray.h"
#include "imaging/desktop/PictureView.h"

#include <QApplication>

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

} // namespace

int main(int count, char** words) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(count, words);
    PictureView view;
    view.resize(1500, 900);
    view.show();
    QApplication::processEvents();
    Measure(view, false);
    Measure(view, true);
    return 0;
}
