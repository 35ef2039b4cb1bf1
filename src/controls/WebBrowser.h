// The hidden page loader of the window; it shows nothing.
#pragma once

#include "controls/Control.h"

#include <QWidget>

namespace pictorel {

class WebBrowser : public QWidget, public Control {
    Q_OBJECT

  public:
    explicit WebBrowser(QWidget* parent);
};

} // namespace pictorel
