// Stands in for the person who answers dialogs and message boxes.
#pragma once

#include <QMessageBox>
#include <QString>
#include <QTimer>

#include <deque>
#include <optional>
#include <vector>

namespace pictorel {

struct SeenMessage {
    QString text;
    QString title;
    QMessageBox::Icon icon;
};

struct SeenFileDialog {
    QString fileName; // that it proposed
    QString folder;
    QString filter;
    QString firstFilter;
};

// Answers every modal window that comes up, in the order in which the answers were given; a message without
// an answer waiting is closed. Everything seen is recorded.
class Person {
  public:
    Person();

    void WillChooseFile(const QString& fileName) { fileAnswers_.push_back(fileName); }
    void WillTakeWhatIsProposed() { fileAnswers_.push_back(QString()); }
    void WillCancelFileDialog() { fileAnswers_.push_back(std::nullopt); }
    void WillPress(QMessageBox::StandardButton button) { messageAnswers_.push_back(button); }

    const std::vector<SeenMessage>& Messages() const { return messages_; }
    const std::vector<SeenFileDialog>& FileDialogs() const { return fileDialogs_; }
    void ForgetMessages() { messages_.clear(); }
    bool HasAnswersLeft() const { return !fileAnswers_.empty() || !messageAnswers_.empty(); }

  private:
    void Look();

    QTimer timer_;
    std::deque<std::optional<QString>> fileAnswers_;
    std::deque<QMessageBox::StandardButton> messageAnswers_;
    std::vector<SeenMessage> messages_;
    std::vector<SeenFileDialog> fileDialogs_;
};

} // namespace pictorel
