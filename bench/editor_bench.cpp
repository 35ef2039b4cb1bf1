// How long a person waits in the real window, beside libjpeg-turbo on one thread in the same run: open a
// photo, press Invert, undo it; and how much memory editing takes with a full history.
#include "app/PictureViewControl.h"
#include "app/StartUp.h"
#include "app/frmMain.h"
#include "imaging/objects/AtomicFile.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QStyleFactory>
#include <QTimer>
#include <turbojpeg.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

namespace {

using namespace pictorel;

constexpr int kRounds = 7;

double Seconds(const QElapsedTimer& clock) {
    return static_cast<double>(clock.nsecsElapsed()) * 1e-9;
}

struct Figure {
    const char* name;
    std::vector<double> seconds;

    double Least() const { return *std::min_element(seconds.begin(), seconds.end()); }
    double Median() const {
        std::vector<double> sorted = seconds;
        std::nth_element(sorted.begin(), sorted.begin() + kRounds / 2, sorted.end());
        return sorted[kRounds / 2];
    }
};

// Tells when the view has been painted.
class PaintWatch : public QObject {
  public:
    explicit PaintWatch(QWidget& view) { view.installEventFilter(this); }

    void Begin() {
        clock_.start();
        last_ = 0;
    }
    double LastPaint() const { return last_; }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && clock_.isValid() && !inside_) {
            inside_ = true;
            watched->event(event); // paints now, so that the clock is read afterwards
            inside_ = false;
            last_ = Seconds(clock_);
            return true;
        }
        return false;
    }

  private:
    QElapsedTimer clock_;
    double last_ = 0;
    bool inside_ = false;
};

double Timed(const std::function<void()>& work) {
    QElapsedTimer clock;
    clock.start();
    work();
    return Seconds(clock);
}

void DecodeWithPeer(const codecs::ByteBuffer& file, std::vector<unsigned char>& pixels, int width,
                    int height) {
    const tjhandle peer = tjInitDecompress();
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    tjDecompress2(peer, file.data(), file.size(), pixels.data(), width, 0, height, TJPF_BGRA, 0);
    tjDestroy(peer);
}

void EncodeWithPeer(const std::vector<unsigned char>& pixels, int width, int height) {
    const tjhandle peer = tjInitCompress();
    unsigned char* bytes = nullptr;
    unsigned long size = 0; // NOLINT(google-runtime-int): the library's type
    tjCompress2(peer, pixels.data(), width, 0, height, TJPF_BGRA, &bytes, &size, TJSAMP_444, 100, 0);
    tjFree(bytes);
    tjDestroy(peer);
}

double MegabytesOf(const char* key) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == key) {
            double kilobytes = 0;
            status >> kilobytes;
            return kilobytes / 1024;
        }
    }
    return 0;
}

// Answers the Open dialog as soon as it is up, and starts the watch at that moment.
void AnswerOpenDialog(const QString& fileName, PaintWatch& watch) {
    QTimer::singleShot(50, [&watch, fileName] {
        auto* const dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(fileName);
        watch.Begin();
        QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
    });
}

void Print(const Figure& ours, const Figure& peer) {
    std::printf("%-42s %8.0f ms  peer %8.0f ms  ratio %.2f (medians %.0f, %.0f)\n", ours.name,
                ours.Least() * 1e3, peer.Least() * 1e3, ours.Least() / peer.Least(), ours.Median() * 1e3,
                peer.Median() * 1e3);
}

} // namespace

int main(int count, char* words[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("PICTOREL_UPDATE_URL", ""); // what is measured waits for no network
    QApplication application(count, words);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setQuitOnLastWindowClosed(false);
    if (count != 2) {
        std::fprintf(stderr, "editor_bench PHOTO.jpg\n");
        return 1;
    }
    const QString photo = QFileInfo(QString::fromLocal8Bit(words[1])).absoluteFilePath();
    frmMain window;
    StartUp startUp(window);
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&window] {
        window.findChild<PopupControl*>(QStringLiteral("PopupControl_Splash"))->Close();
    });
    closer.start(1);
    startUp.Form_Load({});
    closer.stop();
    window.showNormal();
    window.resize(1920, 1080);
    const auto button = [&window](const char* name, int index) -> PushButton& {
        return window.Controls().Array<PushButton>(name)(index);
    };
    while (!button("Cmd_Panel", 0).IsEnabled()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    PaintWatch watch(window.Controls().Array<PictureViewControl>("ImageView")(0));

    Figure open{"Open, dialog answered to drawn", {}};
    Figure peerOpen{"decode of the photo", {}};
    Figure invert{"Invert, click to enabled again", {}};
    Figure peerEncode{"encode, quality 100 4:4:4", {}};
    Figure undo{"Undo, click to drawn", {}};
    Figure peerDecode{"decode of the working file", {}};
    const codecs::ByteBuffer photoBytes = *ReadWholeFile(photo.toStdString());
    double peak = 0;
    for (int round = 0; round < kRounds; ++round) {
        window.Document().ImageModified(0) = false;
        AnswerOpenDialog(photo, watch);
        // The first paint after the dialog closed is the picture's: the view is asked for it by the load
        // itself.
        button("Cmd_Panel", 0).click();
        QApplication::processEvents();
        const int width = window.Document().ImageWidth(0);
        const int height = window.Document().ImageHeight(0);
        open.seconds.push_back(watch.LastPaint());
        invert.seconds.push_back(Timed([&] { button("Cmd_Tab", 2).click(); }));
        watch.Begin();
        button("Cmd_Panel", 2).click();
        undo.seconds.push_back(watch.LastPaint());
        if (round == 0) { // before the peer's own buffers count
            for (int edit = 0; edit < 17; ++edit) {
                button("Cmd_Tab", edit % 3).click();
            }
            for (int step = 0; step < 5; ++step) {
                button("Cmd_Panel", 2).click();
                QApplication::processEvents();
            }
            peak = MegabytesOf("VmHWM:");
            std::printf(
                "Picture %d x %d, peak memory with a full history %.0f MB (4 x pixels + 120 MB: %.0f MB)\n",
                width, height, peak, 4.0 * width * height * 4 / 1048576 + 120);
        }
        const codecs::ByteBuffer working = *ReadWholeFile(
            (window.Document().GetTempFolder() + QStringLiteral("tmpimg_0_1.jpg")).toStdString());
        std::vector<unsigned char> pixels;
        DecodeWithPeer(photoBytes, pixels, width, height); // warms the buffer
        peerOpen.seconds.push_back(Timed([&] { DecodeWithPeer(photoBytes, pixels, width, height); }));
        peerEncode.seconds.push_back(Timed([&] { EncodeWithPeer(pixels, width, height); }));
        peerDecode.seconds.push_back(Timed([&] { DecodeWithPeer(working, pixels, width, height); }));
    }
    Print(open, peerOpen);
    Print(invert, peerEncode);
    Print(undo, peerDecode);
    window.Document().ImageModified(0) = false;
    window.close();
    return 0;
}
