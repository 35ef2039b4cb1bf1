// A horizontal slider with tick marks that tells when it is pressed, moved, let go and given up.
#pragma once

#include "controls/Control.h"

#include <QSlider>

#include <functional>
#include <optional>
#include <utility>

namespace pictorel {

// Each Pressed is followed by one Released, or by one Cancelled where the person presses Escape or the slider
// loses the mouse (its window is closed, another becomes active, the slider is hidden or disabled). Keys
// change the value without a press; Enter then is a press and a release, Escape gives the change up.
class Slider : public QSlider, public Control {
    Q_OBJECT

  public:
    explicit Slider(QWidget* parent);

    void SetRange(int minimum, int maximum) { setRange(minimum, maximum); }
    void SetValueRange(int minimum, int maximum, int value, int page) override;
    void SetSteps(int small, int large);
    void SetTickSpacing(int spacing);

    // The value at which the slider does nothing; the track is filled from there to the thumb. A slider
    // without one fills from its minimum.
    void SetNeutral(int value);

    // A slider whose value the picture does not have looks so.
    void SetPending(bool pending);
    bool IsPending() const { return pending_; }

    // Whether the wheel moves the slider; otherwise it goes to whatever scrolls around it.
    void SetFollowsWheel(bool follows) { followsWheel_ = follows; }

    // How values are written beside the slider; the plain number where nothing is set.
    void SetShownText(std::function<QString(int)> text) { shownText_ = std::move(text); }
    QString ShownText(int value) const { return shownText_ ? shownText_(value) : QString::number(value); }

    // What assistive tools do: a press, the value, a release.
    void Choose(int value);

    int Value() const { return value(); }
    // Values outside the range are clamped. Raises no ValueChanged: only what the person does is an event.
    void SetValue(int value);

  signals:
    void Pressed();
    void Changed(int value);
    void Released();
    void Cancelled(); // the slider stands where it stood when it was pressed, without a Changed

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    QSize sizeHint() const override;

  private:
    double XOf(int value) const;
    int ValueAt(double x) const;
    void ChangeTo(int value);
    bool SettleKeys(int key);
    bool LosesMouse(const QEvent& event) const;
    void Cancel();

    std::function<QString(int)> shownText_;
    int tickSpacing_ = 0;
    int neutral_ = 0;
    bool hasNeutral_ = false;
    bool pending_ = false;
    bool followsWheel_ = true;
    bool held_ = false;
    bool dragging_ = false;
    int valueAtPress_ = 0;
    std::optional<int> valueBeforeKeys_; // while keys have changed the value and nothing has settled it
    double grabOffset_ = 0;
};

} // namespace pictorel
