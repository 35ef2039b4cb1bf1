// The keys that click the window's buttons, see Shortcuts.h.
#include "app/Shortcuts.h"

#include <QApplication>
#include <QKeySequence>
#include <QShortcut>

#include <string>

namespace pictorel {
namespace {

constexpr std::array kTable{
    ShortcutRow{"Cmd_Panel", 0, {"Ctrl+O", ""}, false},            // Open
    ShortcutRow{"Cmd_Panel", 1, {"Ctrl+S", ""}, false},            // Save
    ShortcutRow{"Cmd_Panel", 2, {"Ctrl+Z", ""}, true},             // Undo
    ShortcutRow{"Cmd_Panel", 3, {"Ctrl+Y", "Ctrl+Shift+Z"}, true}, // Redo
    ShortcutRow{"Cmd_Panel", 4, {"Ctrl+P", ""}, false},            // Print
    ShortcutRow{"Cmd_Panel", 7, {"F1", ""}, false},                // About
    ShortcutRow{"Cmd_ZoomFit", 0, {"Ctrl+0", ""}, false},          //
    ShortcutRow{"Cmd_ActualSize", 0, {"Ctrl+1", ""}, false},       //
    ShortcutRow{"Cmd_ZoomIn", 0, {"Ctrl++", "Ctrl+="}, true},      // "+" is Shift and "=" on many keyboards
    ShortcutRow{"Cmd_ZoomOut", 0, {"Ctrl+-", ""}, true},           //
};

static_assert(
    [] {
        for (std::size_t i = 0; i < kTable.size(); ++i) {
            for (std::size_t j = 0; j < i; ++j) {
                for (const std::string_view keys : kTable[j].keys) {
                    if (!keys.empty() && (keys == kTable[i].keys[0] || keys == kTable[i].keys[1])) {
                        return false;
                    }
                }
            }
        }
        return true;
    }(),
    "no keys click two buttons");

QKeySequence Sequence(std::string_view keys) {
    return QKeySequence(QString::fromLatin1(keys.data(), static_cast<qsizetype>(keys.size())),
                        QKeySequence::PortableText);
}

} // namespace

std::span<const ShortcutRow> ShortcutTable() noexcept {
    return kTable;
}

Shortcuts::Shortcuts(QWidget& window, const ControlRegistry& controls) {
    for (const ShortcutRow& row : kTable) {
        PushButton& button = controls.Array<PushButton>(std::string(row.array))(row.element);
        button.SetShortcutText(Sequence(row.keys.front()).toString(QKeySequence::NativeText));
        for (const std::string_view keys : row.keys) {
            if (!keys.empty()) {
                Bind(window, button, row, keys);
            }
        }
    }
}

void Shortcuts::Bind(QWidget& window, PushButton& button, const ShortcutRow& row, std::string_view keys) {
    auto* const shortcut = new QShortcut(Sequence(keys), &window); // the window owns it
    shortcut->setAutoRepeat(row.repeats);
    events_.On(*shortcut, &QShortcut::activated, [&button] {
        if (button.isVisible() && QApplication::mouseButtons() == Qt::NoButton) {
            button.click(); // does nothing while the button is disabled
        }
    });
}

} // namespace pictorel
