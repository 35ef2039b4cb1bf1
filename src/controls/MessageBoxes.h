// The modal message boxes on the screen.
#pragma once

#include "platform/Messages.h"

class QImage;
class QWidget;

namespace pictorel {

class MessageBoxes : public Messages {
  public:
    explicit MessageBoxes(QWidget* owner) : owner_(owner) {}

    void Show(const QString& text, const QString& title, MessageIcon icon) override;
    MessageAnswer AskYesNoCancel(const QString& text, const QString& title) override;

    // The same about a picture, which is shown beside the text where it is there; Cancel reads "Later".
    MessageAnswer AskAboutPicture(const QString& text, const QString& title, const QImage& picture);

  private:
    QWidget* owner_;
};

} // namespace pictorel
