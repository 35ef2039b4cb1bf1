// A panel that holds other controls and scrolls when it is shorter than they need.
#pragma once

#include "controls/Control.h"

#include <QScrollArea>

namespace pictorel {

class ContainerPanel : public QScrollArea, public Control {
    Q_OBJECT

  public:
    explicit ContainerPanel(QWidget* parent);

    QWidget& Interior() override { return *interior_; }

    // A panel that scrolls shows a scroll bar as soon as its children reach below its end; one that does not
    // is as large as its own rectangle.
    void SetScrolling(bool scrolling);

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void FitInterior();

    QWidget* interior_;
    bool scrolling_ = false;
};

} // namespace pictorel
