// A spinner: two arrows that step a value, beside the edit field that is its buddy.
#pragma once

#include "controls/Control.h"
#include "controls/EditField.h"

#include <QWidget>

namespace pictorel {

class UpDown : public QWidget, public Control {
    Q_OBJECT

  public:
    explicit UpDown(QWidget* parent);

    void SetRange(int minimum, int maximum);
    void SetValueRange(int minimum, int maximum, int value, int page) override;
    int Minimum() const { return minimum_; }
    int Maximum() const { return maximum_; }
    int Value() const { return value_; }
    // Clamped to the range; raises Changed when the value differs from the one before.
    void SetValue(int value);

    // Stepping by the arrows goes on from the number that the buddy shows and writes the new one into it; the
    // buddy's arrow keys and wheel step as well.
    void SetBuddy(EditField& buddy);

    // Sets the value and writes it into the buddy, as stepping to it does.
    void Choose(int value);

  signals:
    void Changed(int value);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Step(int direction);

    EditField* buddy_ = nullptr;
    int minimum_ = 0;
    int maximum_ = 100;
    int value_ = 0;
    int heldDirection_ = 0; // +1, -1 while an arrow is held
    int repeatTimer_ = 0;
};

} // namespace pictorel
