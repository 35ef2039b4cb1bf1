// How long a person waits in the real window, beside libjpeg-turbo on one thread in the same run: open a
// photo, press Invert, undo it; and how much memory editing takes with a full history.
#include "BenchWindow.h"
#include "Peer.h"
#include "editor/AtomicFile.h"
#include "view/PictureViewControl.h"

#include <QApplication>
#include <QFileInfo>

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace {

using namespace pictorel;

constexpr int kRounds = 7;

using bench::Figure;
using bench::Timed;

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

} // namespace

int main(int count, char* words[]) {
    bench::UseNoScreen();
    QApplication application(count, words);
    QApplication::setQuitOnLastWindowClosed(false);
    if (count != 2) {
        std::fprintf(stderr, "editor_bench PHOTO.jpg\n");
        return 1;
    }
    const QString photo = QFileInfo(QString::fromLocal8Bit(words[1])).absoluteFilePath();
    bench::BenchWindow editor;
    bench::PaintWatch watch(editor.Get<PictureViewControl>("ImageView"));
    Image_Mods& document = editor.Window().Document();

    Figure open{"Open, dialog answered to drawn", {}};
    Figure peerOpen{"decode of the photo", {}};
    Figure invert{"Invert, click to enabled again", {}};
    Figure peerEncode{"encode, quality 100 4:4:4", {}};
    Figure undo{"Undo, click to drawn", {}};
    Figure peerDecode{"decode of the working file", {}};
    const codecs::ByteBuffer photoBytes = *ReadWholeFile(photo.toStdString());
    double peak = 0;
    for (int round = 0; round < kRounds; ++round) {
        // The first paint after the dialog closed is the picture's: the view is asked for it by the load
        // itself.
        editor.Open(photo, watch);
        const int width = document.ImageWidth(0);
        const int height = document.ImageHeight(0);
        open.seconds.push_back(watch.LastPaint());
        invert.seconds.push_back(Timed([&] { editor.Get("Cmd_Tab", 2).click(); }));
        watch.Begin();
        editor.Get("Cmd_Panel", 2).click();
        undo.seconds.push_back(watch.LastPaint());
        if (round == 0) { // before the peer's own buffers count
            for (int edit = 0; edit < 17; ++edit) {
                editor.Get("Cmd_Tab", edit % 3).click();
            }
            for (int step = 0; step < 5; ++step) {
                editor.Get("Cmd_Panel", 2).click();
                QApplication::processEvents();
            }
            peak = MegabytesOf("VmHWM:");
            std::printf(
                "Picture %d x %d, peak memory with a full history %.0f MB (4 x pixels + 120 MB: %.0f MB)\n",
                width, height, peak, 4.0 * width * height * 4 / 1048576 + 120);
        }
        const codecs::ByteBuffer working =
            *ReadWholeFile((document.GetTempFolder() + QStringLiteral("tmpimg_0_1.jpg")).toStdString());
        std::vector<unsigned char> pixels;
        bench::DecodeWithPeer(photoBytes, pixels, width, height); // warms the buffer
        peerOpen.seconds.push_back(Timed([&] { bench::DecodeWithPeer(photoBytes, pixels, width, height); }));
        peerEncode.seconds.push_back(Timed([&] { bench::EncodeWithPeer(pixels, width, height); }));
        peerDecode.seconds.push_back(Timed([&] { bench::DecodeWithPeer(working, pixels, width, height); }));
    }
    bench::PrintRatio(open, peerOpen);
    bench::PrintRatio(invert, peerEncode);
    bench::PrintRatio(undo, peerDecode);
    return 0;
}
