// The attention devices of the main window: splash, getting-started tag, and the blink of a button.
#pragma once

#include "controls/Events.h"
#include "controls/PopupControl.h"
#include "controls/PushButton.h"

#include <QTimer>

#include <cstdint>

namespace pictorel {

struct SplashPicture {
    QByteArray standard; // PNG, 579 x 403
    QByteArray dense;    // the same at twice the size, for dense screens; may be empty
};

// Both start their notice and return; a step that fails is skipped, and the notice may then not appear.
// `temporaryFolder` ends with its separator. The splash stands in the middle of the screen that `window` is
// on or will be, the tag below and right of `corner`, the main window's top left corner on the screen.
void ShowSplashPopup(PopupControl& popup, const QWidget& window, const SplashPicture& splash,
                     const QString& temporaryFolder);
void ShowGettingStartedTag(PopupControl& popup, const QPoint& corner, const QString& picture,
                           const QString& temporaryFolder);

class Popup_Mod {
  public:
    explicit Popup_Mod(QTimer& timer_Blink);

    // Starts or stops the blink: the button's highlighted state alternates at each tick, three times, and
    // ends plain.
    void BlinkButton(PushButton& button, bool on, int intervalMilliseconds);

    void Timer_Blink_Timer();
    bool IsBlinking() const { return timer_Blink_.isActive(); }

    PushButton* BlinkTarget = nullptr;

  private:
    QTimer& timer_Blink_;
    bool blinkState_ = false; // kept between blinks
    std::int16_t blinkCount_ = 0;
    Events events_;
};

} // namespace pictorel
