// One choice of several; the siblings in one container exclude each other.
#pragma once

#include "controls/Control.h"

#include <QRadioButton>

namespace pictorel {

class RadioButton : public QRadioButton, public Control {
    Q_OBJECT

  public:
    explicit RadioButton(QWidget* parent);

    void SetCaption(const QString& text) override { setText(text); }
};

} // namespace pictorel
