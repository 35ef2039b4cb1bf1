// A flat field for one line of text, whose owner may refuse keys.
#pragma once

#include "controls/Control.h"

#include <QLineEdit>

#include <functional>

namespace pictorel {

class EditField : public QLineEdit, public Control {
    Q_OBJECT

  public:
    explicit EditField(QWidget* parent);

    void SetCaption(const QString& text) override { setText(text); }

    // The key filter gets the character typed and answers whether to keep it.
    using KeyFilter = std::function<bool(QChar key)>;
    void SetKeyFilter(KeyFilter filter) { filter_ = std::move(filter); }

  signals:
    void FocusLost();

  protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    KeyFilter filter_;
};

} // namespace pictorel
