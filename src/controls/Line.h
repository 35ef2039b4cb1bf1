// A separator, upright or lying, as its longer side says.
#pragma once

#include "controls/Control.h"

#include <QWidget>

namespace pictorel {

class Line : public QWidget, public Control {
    Q_OBJECT

  public:
    explicit Line(QWidget* parent);

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace pictorel
