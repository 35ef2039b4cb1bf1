// How long a person waits while dragging a slider and after letting it go, in the real window with a photo:
// each change until the preview is painted, for every slider there is; the release of Brightness and its undo
// beside libjpeg-turbo on one thread in the same run.
#include "BenchWindow.h"
#include "Peer.h"
#include "editor/AtomicFile.h"
#include "editor/SliderCatalogue.h"
#include "view/PictureViewControl.h"

#include <QApplication>
#include <QFileInfo>

#include <algorithm>
#include <cstdio>

namespace {

using namespace pictorel;
using bench::BenchWindow;
using bench::Figure;
using bench::Timed;

constexpr int kRounds = 7;
constexpr int kChanges = 21; // values over a slider's range

// Every change from the slider's signal to the preview painted.
Figure Changes(BenchWindow& editor, int index) {
    const SliderRow& row = SliderCatalogue()[static_cast<std::size_t>(index)];
    auto& slider = editor.Get<Slider>("Slider_Tab", index);
    Figure figure{std::string(row.caption), {}};
    emit slider.Pressed();
    QApplication::processEvents();
    for (int i = 0; i < kChanges; ++i) {
        slider.SetValue(row.minimum + (row.maximum - row.minimum) * i / (kChanges - 1));
        figure.seconds.push_back(Timed([&] { emit slider.Changed(slider.Value()); }));
    }
    slider.SetValue(row.defaultValue);
    emit slider.Cancelled();
    return figure;
}

void PrintChanges(BenchWindow& editor) {
    std::vector<double> all;
    Figure worst;
    for (int i = 0; i < kSliderCount; ++i) {
        const Figure figure = Changes(editor, i);
        const double first = figure.seconds.front();
        const double longest = *std::max_element(figure.seconds.begin() + 1, figure.seconds.end());
        std::printf("  %-16s median %6.2f ms, longest %6.2f ms, first %6.2f ms\n", figure.name.c_str(),
                    figure.Median() * 1e3, longest * 1e3, first * 1e3);
        all.insert(all.end(), figure.seconds.begin(), figure.seconds.end());
        if (worst.seconds.empty() || figure.Median() > worst.Median()) {
            worst = figure;
        }
    }
    const Figure together{"", all};
    std::printf("A change, signal to preview painted: median %.2f ms; slowest slider %s, median %.2f ms\n",
                together.Median() * 1e3, worst.name.c_str(), worst.Median() * 1e3);
}

} // namespace

int main(int count, char* words[]) {
    bench::UseNoScreen();
    QApplication application(count, words);
    QApplication::setQuitOnLastWindowClosed(false);
    if (count != 2) {
        std::fprintf(stderr, "slider_bench PHOTO.jpg\n");
        return 1;
    }
    BenchWindow editor;
    bench::PaintWatch watch(editor.Get<PictureViewControl>("ImageView"));
    editor.Open(QFileInfo(QString::fromLocal8Bit(words[1])).absoluteFilePath(), watch);
    Image_Mods& document = editor.Window().Document();
    const int width = document.ImageWidth(0);
    const int height = document.ImageHeight(0);
    std::printf("Picture %d x %d, reduced copy %d pixels wide\n", width, height, 250);
    PrintChanges(editor);

    Figure press{"press, to the preview shown", {}};
    Figure release{"Brightness, mouse-up to controls enabled", {}};
    Figure undo{"Undo, click to drawn", {}};
    Figure encode{"encode", {}};
    Figure decode{"decode", {}};
    auto& slider = editor.Get<Slider>("Slider_Tab", 0);
    std::vector<unsigned char> pixels;
    for (int round = 0; round < kRounds; ++round) {
        press.seconds.push_back(Timed([&] { emit slider.Pressed(); }));
        slider.SetValue(20 + round);
        emit slider.Changed(slider.Value());
        release.seconds.push_back(Timed([&] { emit slider.Released(); }));
        QApplication::processEvents();
        const QString file = document.GetTempFolder() + QStringLiteral("tmpimg_0_1.jpg");
        const codecs::ByteBuffer working = *ReadWholeFile(file.toStdString());
        decode.seconds.push_back(Timed([&] { bench::DecodeWithPeer(working, pixels, width, height); }));
        encode.seconds.push_back(Timed([&] { bench::EncodeWithPeer(pixels, width, height); }));
    }
    for (int round = 0; round < kRounds; ++round) {
        watch.Begin();
        editor.Get("Cmd_Panel", 2).click();
        undo.seconds.push_back(watch.LastPaint());
    }
    std::printf("%-42s %8.1f ms (median %.1f)\n", press.name.c_str(), press.Least() * 1e3,
                press.Median() * 1e3);
    bench::PrintRatio(release, encode);
    bench::PrintRatio(undo, decode);
    return 0;
}
