// The modal message boxes on the screen, see MessageBoxes.h.
#include "controls/MessageBoxes.h"

#include "controls/MessageMark.h"

#include <QImage>
#include <QLabel>
#include <QMessageBox>
#include <QPixmap>
#include <QPushButton>

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

// Into the label, not by setIconPixmap(): that would take from the box what kind it is, which desktops tell
// by a sound and screen readers by words.
void SetMark(QMessageBox& box, const QPixmap& mark) {
    if (auto* const label = box.findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label"))) {
        label->setPixmap(mark);
    }
}

int Ask(QWidget* owner, const QString& text, const QString& title, MessageIcon icon,
        QMessageBox::StandardButtons buttons) {
    QMessageBox box(KindOf(icon), title, text, buttons, owner);
    SetMark(box, MessageMark(icon, box.devicePixelRatioF()));
    box.setTextFormat(Qt::PlainText);
    return box.exec();
}

MessageAnswer AnswerOf(int button) {
    switch (button) {
        case QMessageBox::Yes:
            return MessageAnswer::Yes;
        case QMessageBox::No:
            return MessageAnswer::No;
        default:
            return MessageAnswer::Cancel;
    }
}

} // namespace

void MessageBoxes::Show(const QString& text, const QString& title, MessageIcon icon) {
    Ask(owner_, text, title, icon, QMessageBox::Ok);
}

MessageAnswer MessageBoxes::AskYesNoCancel(const QString& text, const QString& title) {
    return AnswerOf(Ask(owner_, text, title, MessageIcon::Question,
                        QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel));
}

MessageAnswer MessageBoxes::AskAboutPicture(const QString& text, const QString& title,
                                            const QImage& picture) {
    QMessageBox box(QMessageBox::Question, title, text,
                    QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel, owner_);
    SetMark(box, picture.isNull() ? MessageMark(MessageIcon::Question, box.devicePixelRatioF())
                                  : QPixmap::fromImage(picture));
    box.setTextFormat(Qt::PlainText);
    box.button(QMessageBox::Cancel)->setText(QObject::tr("Later"));
    return AnswerOf(box.exec());
}

} // namespace pictorel
