// A small marker, decoration only.
#pragma once

#include "controls/Control.h"

#include <QWidget>

namespace pictorel {

class Shape : public QWidget, public Control {
    Q_OBJECT

  public:
    explicit Shape(QWidget* parent);
};

} // namespace pictorel
