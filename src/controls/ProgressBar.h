// How far a long operation has come.
#pragma once

#include <QProgressBar>

#include "controls/Control.h"

namespace pictorel {

class ProgressBar : public QProgressBar, public Control {
    Q_OBJECT

  public:
    explicit ProgressBar(QWidget* parent);
};

} // namespace pictorel
