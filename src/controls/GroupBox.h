// A frame around controls that belong together, with or without a caption.
#pragma once

#include "controls/Control.h"

#include <QWidget>

namespace pictorel {

class GroupBox : public QWidget, public Control {
    Q_OBJECT

  public:
    explicit GroupBox(QWidget* parent);

    void SetCaption(const QString& text) override;

    // Without a frame the group is only a container.
    void SetFramed(bool framed);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QString caption_;
    bool framed_ = false;
};

} // namespace pictorel
