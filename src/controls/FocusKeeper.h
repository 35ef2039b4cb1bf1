// Keeps the keyboard focus where it was while a command switches controls off and on again.
#pragma once

#include <QPointer>
#include <QWidget>

namespace pictorel {

// A control that goes off hands the focus to its neighbour, and so on down the page, which then scrolls. So
// the focus is dropped before, and comes back at the end, unless somebody else has taken it.
class FocusKeeper {
  public:
    explicit FocusKeeper(QWidget& window) : window_(window.window()), focus_(window_->focusWidget()) {
        if (focus_ != nullptr) {
            focus_->clearFocus();
        }
    }
    ~FocusKeeper() {
        const bool taken = window_ != nullptr && window_->focusWidget() != nullptr;
        if (focus_ != nullptr && !taken && focus_->isEnabled()) {
            focus_->setFocus(Qt::OtherFocusReason);
        }
    }
    FocusKeeper(const FocusKeeper&) = delete;
    FocusKeeper& operator=(const FocusKeeper&) = delete;

  private:
    QPointer<QWidget> window_;
    QPointer<QWidget> focus_;
};

} // namespace pictorel
