// A flat field for one line of text, whose owner may refuse keys, see EditField.h.
#include "controls/EditField.h"

#include <QKeyEvent>

namespace pictorel {

EditField::EditField(QWidget* parent) : QLineEdit(parent), Control(static_cast<QWidget&>(*this)) {}

void EditField::keyPressEvent(QKeyEvent* event) {
    const QString text = event->text();
    const bool isCharacter = !text.isEmpty() && text.front().isPrint();
    if (isCharacter && filter_ && !filter_(text.front())) {
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void EditField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    emit FocusLost();
}

} // namespace pictorel
