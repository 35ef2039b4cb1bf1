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

    // A panel that fills its parent is on the screen as high as there is room, whatever its own rectangle
    // says.
    void SetFillsParent(bool fills);

    void Fill(); // the parent has another height

  protected:
    void Place() override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void FitInterior();

    QWidget* interior_;
    bool scrolling_ = false;
    bool fillsParent_ = false;
};

} // namespace pictorel
