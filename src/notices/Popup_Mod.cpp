// The attention devices of the main window, see Popup_Mod.h.
#include "notices/Popup_Mod.h"

#include "platform/CarryOn.h"
#include "platform/FileSystem.h"
#include "platform/PumpEvents.h"

#include <QFile>
#include <QPoint>
#include <QScreen>
#include <QWidget>

namespace pictorel {
namespace {

constexpr int kLastTick = 7;
constexpr int kPictureId = 200;

struct Notice {
    int animation; // milliseconds
    int display;   // milliseconds
    int width;     // pixels
    int height;
};

constexpr Notice kSplash{500, 2500, 579, 403};
constexpr Notice kTag{100, 3000, 360, 112};

void WriteFile(const QString& fileName, const QByteArray& bytes) {
    QFile file(fileName);
    if (bytes.isEmpty() || !file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        throw FileError("The splash picture cannot be written.");
    }
}

void Configure(PopupControl& popup, const Notice& notice, const QString& picture) {
    CarryOn([&] { popup.AddPicture(picture, kPictureId); }, //
            [&] { popup.SetBackground(kPictureId); },
            [&] {
                popup.SetAnimationTime(notice.animation);
                popup.SetDisplayTime(notice.display);
                popup.SetSize(notice.width, notice.height);
            });
}

} // namespace

void ShowSplashPopup(PopupControl& popup, const QWidget& window, const SplashPicture& splash,
                     const QString& temporaryFolder) {
    const QString fileName = temporaryFolder + QStringLiteral("tmp0001.png");
    CarryOn([&] { WriteFile(fileName, splash.standard); }, //
            [&] { WriteFile(DenseCompanion(fileName), splash.dense); }, [] { LetAllEventsRun(); },
            [&] { Configure(popup, kSplash, fileName); },
            [&] {
                const QRect screen = window.screen()->geometry();
                popup.SetAnchor(screen.left() + screen.width() / 2.0 + popup.Width() / 2.0,
                                screen.top() + screen.height() / 2.0 + popup.Height() / 2.0);
            },
            [] { LetAllEventsRun(); }, //
            [&] { popup.Show(); }, [&] { FileSystem().Delete(fileName); },
            [&] { FileSystem().Delete(DenseCompanion(fileName)); });
}

void ShowGettingStartedTag(PopupControl& popup, const QPoint& corner, const QString& picture,
                           const QString& temporaryFolder) {
    constexpr int kRightOfWindow = 40; // pixels from the window's left edge to the tag's
    constexpr int kBelowWindow = 100;  // pixels from the window's top edge to the tag's
    constexpr int kOpaque = 255;
    CarryOn([&] { Configure(popup, kTag, picture); }, //
            [&] { popup.SetOpacity(kOpaque); },
            [&] {
                popup.SetAnchor(corner.x() + popup.Width() + kRightOfWindow,
                                corner.y() + popup.Height() + kBelowWindow);
            },
            [&] { popup.Show(); },
            [&] { FileSystem().Delete(temporaryFolder + QStringLiteral("tmp0003.png")); });
}

Popup_Mod::Popup_Mod(QTimer& timer_Blink) : timer_Blink_(timer_Blink) {
    events_.On(timer_Blink_, &QTimer::timeout, [this] { Timer_Blink_Timer(); });
}

void Popup_Mod::BlinkButton(PushButton& button, bool on, int intervalMilliseconds) {
    BlinkTarget = &button;
    timer_Blink_.setInterval(intervalMilliseconds);
    if (on) {
        timer_Blink_.start();
        return;
    }
    timer_Blink_.stop();
    blinkCount_ = 0;
    BlinkTarget->SetHighlighted(false);
}

void Popup_Mod::Timer_Blink_Timer() {
    ++blinkCount_;
    blinkState_ = !blinkState_;
    const bool last = blinkCount_ >= kLastTick;
    if (last) {
        blinkCount_ = 0;
        timer_Blink_.stop();
    }
    if (BlinkTarget != nullptr) {
        BlinkTarget->SetHighlighted(!last && blinkState_);
    }
}

} // namespace pictorel
