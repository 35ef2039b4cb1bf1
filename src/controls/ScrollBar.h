// A scroll bar.
#pragma once

#include "controls/Control.h"

#include <QScrollBar>

namespace pictorel {

class ScrollBar : public QScrollBar, public Control {
    Q_OBJECT

  public:
    explicit ScrollBar(QWidget* parent);

    void SetOrientation(Qt::Orientation orientation) { setOrientation(orientation); }
    void SetValueRange(int minimum, int maximum, int value, int page) override;
};

} // namespace pictorel
