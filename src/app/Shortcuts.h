// The keys that click the window's buttons.
#pragma once

#include "app/MainControls.h"
#include "controls/Events.h"
#include "controls/PushButton.h"

#include <QKeySequence>
#include <QWidget>

#include <array>
#include <functional>
#include <span>
#include <string_view>

class QShortcut;

namespace pictorel {

struct ShortcutRow {
    ControlArray<PushButton> MainControls::*array;
    int element;
    std::array<std::string_view, 2> keys; // the first is the one that the tool tip shows; "" for none
    bool repeats;                         // while the keys are held
};

std::span<const ShortcutRow> ShortcutTable() noexcept;

// Binds the keys for the whole window, whatever control has the focus, and has the buttons' tool tips show
// them. A key does what a click does: nothing while the button is disabled or hidden, nor while a mouse
// button is held, since what the mouse has begun is ended first.
class Shortcuts {
  public:
    Shortcuts(QWidget& window, const MainControls& controls);

    // Keys for something that has no button; a standard key means the platform's.
    void On(QWidget& window, QKeySequence::StandardKey keys, std::function<void()> action);
    void On(QWidget& window, const QKeySequence& keys, std::function<void()> action);

  private:
    void Run(QShortcut& shortcut, std::function<void()> action);
    void Bind(QWidget& window, PushButton& button, const ShortcutRow& row, std::string_view keys);

    Events events_;
};

} // namespace pictorel
