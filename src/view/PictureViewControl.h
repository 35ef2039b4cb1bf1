// The picture view as a control of the main window.
#pragma once

#include "controls/Control.h"
#include "view/PictureView.h"

namespace pictorel {

class PictureViewControl : public PictureView, public Control {
  public:
    explicit PictureViewControl(QWidget* parent)
        : PictureView(parent), Control(static_cast<QWidget&>(*this)) {}
};

} // namespace pictorel
