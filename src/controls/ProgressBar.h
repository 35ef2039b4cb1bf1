// How far a long operation has come.
#pragma once

#include "controls/Control.h"

#include <QProgressBar>

namespace pictorel {

class ProgressBar : public QProgressBar, public Control {
    Q_OBJECT

  public:
    explicit ProgressBar(QWidget* parent);

    void SetValueRange(int minimum, int maximum, int value, int page) override;
};

} // namespace pictorel
