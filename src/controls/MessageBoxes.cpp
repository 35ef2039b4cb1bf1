// The modal message boxes on the screen, see MessageBoxes.h.
#include "controls/MessageBoxes.h"

#include "controls/MessageMark.h"

#include <QLabel>
#include <QMessageBox>

namespace pictorel {
namespace {

QMessageBox::Icon KindOf(MessageIcon icon) {
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

int Ask(QWidget* owner, const QString& text, const QString& title, MessageIcon icon,
        QMessageBox::StandardButtons buttons, QMessageBox::StandardButton byDefault = QMessageBox::NoButton) {
    QMessageBox box(KindOf(icon), title, text, buttons, owner);
    // Into the label, not by setIconPixmap(): that would take from the box what kind it is, which desktops
    // tell by a sound and screen readers by words.
    if (auto* const label = box.findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"))) {
        label->setPixmap(MessageMark(icon, box.devicePixelRatioF()));
    }
    box.setTextFormat(Qt::PlainText);
    box.setDefaultButton(byDefault);
    return box.exec();
}

} // namespace

void MessageBoxes::Show(const QString& text, const QString& title, MessageIcon icon) {
    Ask(owner_, text, title, icon, QMessageBox::Ok);
}

bool MessageBoxes::AskYesNo(const QString& text, const QString& title) {
    return Ask(owner_, text, title, MessageIcon::Question, QMessageBox::Yes | QMessageBox::No,
               QMessageBox::No) == QMessageBox::Yes;
}

MessageAnswer MessageBoxes::AskYesNoCancel(const QString& text, const QString& title) {
    switch (Ask(owner_, text, title, MessageIcon::Question,
                QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel)) {
        case QMessageBox::Yes:
            return MessageAnswer::Yes;
        case QMessageBox::No:
            return MessageAnswer::No;
        default:
            return MessageAnswer::Cancel;
    }
}

} // namespace pictorel
