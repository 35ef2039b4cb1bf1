// A text on the window.
#pragma once

#include "controls/Control.h"

#include <QLabel>

namespace pictorel {

class Label : public QLabel, public Control {
    Q_OBJECT

  public:
    explicit Label(QWidget* parent);

    void SetCaption(const QString& text) override { setText(text); }
    QString Caption() const { return text(); }

    // A dimmed text looks like that of a disabled label.
    void SetDimmed(bool dimmed);

  protected:
    // A text too long for its place ends in an ellipsis and shows whole as a tool tip.
    void paintEvent(QPaintEvent* event) override;

  private:
    bool dimmed_ = false;
};

} // namespace pictorel
