// What screen readers are told of the window, where a widget by itself would say too little or too much.
#pragma once

#include <QWidget>

namespace pictorel {

// To be made before the controls: windows are frames and pictures images, sliders and spinners have the
// numbers that are shown, the lock its state, and decorations are not there. It lasts as long as the process.
struct ScreenReaders {
    ScreenReaders();
};

// Says what happened though nothing that has the focus shows it: a notification to assistive tools, unseen.
class Announcer : public QWidget {
    Q_OBJECT

  public:
    explicit Announcer(QWidget& window);

    void Say(const QString& text);
};

} // namespace pictorel
