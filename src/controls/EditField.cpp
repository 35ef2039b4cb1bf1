// A flat field for one line of text, whose owner may refuse keys, see EditField.h.
#include "controls/EditField.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>

namespace pictorel {

EditField::EditField(QWidget* parent) : QLineEdit(parent), Control(static_cast<QWidget&>(*this)) {
    setAcceptDrops(false); // what is dropped goes to the window, and never past the key filter
}

// Undo and Redo belong to the field only while something typed in it can be taken back, Copy while something
// is marked, Paste while there is text to paste: otherwise they are the picture's.
bool EditField::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if ((key->matches(QKeySequence::Undo) && !isUndoAvailable()) ||
            (key->matches(QKeySequence::Redo) && !isRedoAvailable()) ||
            (key->matches(QKeySequence::Copy) && !hasSelectedText()) ||
            (key->matches(QKeySequence::Paste) && QGuiApplication::clipboard()->text().isEmpty())) {
            event->ignore();
            return false;
        }
    }
    return QLineEdit::event(event);
}

void EditField::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    const bool isCommand = (event->modifiers() & ~Qt::ShiftModifier) == Qt::ControlModifier; // such as copy
    const bool isCharacter = !isCommand && !text.isEmpty() && text.front().isPrint();
    if (isCharacter && filter_ && !filter_(text.front())) {
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void EditField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    emit FocusLost();
    if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) {
        setText(text()); // what was typed is settled: coming back, there is nothing to undo here
    }
}

} // namespace pictorel
