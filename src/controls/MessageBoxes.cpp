// The modal message boxes on the screen, see MessageBoxes.h.
#include "controls/MessageBoxes.h"

#include <QMessageBox>

namespace pictorel {
namespace {

QMessageBox::Icon IconOf(MessageIcon icon) {
    switch (icon) {
        case MessageIcon::Critical:
            return QMessageBox::Critical;
        case MessageIcon::Exclamation:
            return QMessageBox::Warning;
        case MessageIcon::Question:
            break;
    }
    return QMessageBox::Question;
}

} // namespace

void MessageBoxes::Show(const QString& text, const QString& title, MessageIcon icon) {
    QMessageBox box(IconOf(icon), title, text, QMessageBox::Ok, owner_);
    box.setTextFormat(Qt::PlainText);
    box.exec();
}

MessageAnswer MessageBoxes::AskYesNoCancel(const QString& text, const QString& title) {
    QMessageBox box(QMessageBox::Question, title, text,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, owner_);
    box.setTextFormat(Qt::PlainText);
    switch (box.exec()) {
        case QMessageBox::Yes:
            return MessageAnswer::Yes;
        case QMessageBox::No:
            return MessageAnswer::No;
        default:
            return MessageAnswer::Cancel;
    }
}

} // namespace pictorel
