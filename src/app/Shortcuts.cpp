// The keys that click the window's buttons, see Shortcuts.h.
#include "app/Shortcuts.h"

#include <QApplication>
#include <QShortcut>

#include <utility>

namespace pictorel {
namespace {

constexpr std::array kTable{
    ShortcutRow{&MainControls::Cmd_Panel, kOpenButton, {"Ctrl+O", ""}, false},
    ShortcutRow{&MainControls::Cmd_Panel, kSaveButton, {"Ctrl+S", ""}, false},
    ShortcutRow{&MainControls::Cmd_Panel, kUndoButton, {"Ctrl+Z", ""}, true},
    ShortcutRow{&MainControls::Cmd_Panel, kRedoButton, {"Ctrl+Y", "Ctrl+Shift+Z"}, true},
    ShortcutRow{&MainControls::Cmd_Panel, kPrintButton, {"Ctrl+P", ""}, false},
    ShortcutRow{&MainControls::Cmd_Panel, kAboutButton, {"F1", ""}, false},
    ShortcutRow{&MainControls::Cmd_ZoomFit, 0, {"Ctrl+0", ""}, false},    //
    ShortcutRow{&MainControls::Cmd_ActualSize, 0, {"Ctrl+1", ""}, false}, //
    ShortcutRow{
        &MainControls::Cmd_ZoomIn, 0, {"Ctrl++", "Ctrl+="}, true}, // "+" is Shift and "=" on many keyboards
    ShortcutRow{&MainControls::Cmd_ZoomOut, 0, {"Ctrl+-", ""}, true}, //
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

Shortcuts::Shortcuts(QWidget& window, const MainControls& controls) {
    for (const ShortcutRow& row : kTable) {
        PushButton& button = (controls.*row.array)(row.element);
        button.SetShortcutText(Sequence(row.keys.front()).toString(QKeySequence::NativeText));
        for (const std::string_view keys : row.keys) {
            if (!keys.empty()) {
                Bind(window, button, row, keys);
            }
        }
    }
}

void Shortcuts::On(QWidget& window, QKeySequence::StandardKey keys, std::function<void()> action) {
    Run(*new QShortcut(keys, &window), std::move(action)); // the window owns it
}

void Shortcuts::On(QWidget& window, const QKeySequence& keys, std::function<void()> action) {
    Run(*new QShortcut(keys, &window), std::move(action));
}

void Shortcuts::Run(QShortcut& shortcut, std::function<void()> action) {
    shortcut.setAutoRepeat(false);
    events_.On(shortcut, &QShortcut::activated, [action = std::move(action)] {
        if (QApplication::mouseButtons() == Qt::NoButton) {
            action();
        }
    });
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
