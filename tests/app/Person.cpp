// Stands in for the person who answers dialogs, see Person.h.
#include "app/Person.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>

namespace pictorel {
namespace {

constexpr int kLookEvery = 5; // milliseconds

} // namespace

Person::Person() {
    QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
    timer_.start(kLookEvery);
}

void Person::Look() {
    QWidget* const modal = QApplication::activeModalWidget();
    if (auto* const box = qobject_cast<QMessageBox*>(modal)) {
        messages_.push_back({box->text(), box->windowTitle(), box->icon()});
        QAbstractButton* button = box->defaultButton();
        if (!messageAnswers_.empty()) {
            button = box->button(messageAnswers_.front());
            messageAnswers_.pop_front();
        }
        if (button != nullptr) {
            QMetaObject::invokeMethod(button, "click", Qt::QueuedConnection);
        } else {
            box->reject();
        }
    } else if (auto* const dialog = qobject_cast<QFileDialog*>(modal)) {
        const auto answer = fileAnswers_.empty() ? std::nullopt : fileAnswers_.front();
        if (!fileAnswers_.empty()) {
            fileAnswers_.pop_front();
        }
        auto* const name = dialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        fileDialogs_.push_back({name->text(), dialog->directory().absolutePath(),
                                dialog->selectedNameFilter(), dialog->nameFilters().first()});
        if (answer) {
            if (!answer->isEmpty()) {
                // As typing does: what is marked in the list is forgotten.
                dialog->findChild<QListView*>(QStringLiteral("listView"))->clearSelection();
                name->setText(*answer);
            }
            // Queued: a question that accepting raises must find this timer free to answer it.
            QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
        } else {
            dialog->reject();
        }
    }
}

} // namespace pictorel
