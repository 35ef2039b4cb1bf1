// Modal messages to the person: the interface that the document layer speaks to.
#pragma once

#include <QString>

namespace pictorel {

enum class MessageIcon { Critical, Exclamation, Question };
enum class MessageAnswer { Yes, No, Cancel };

class Messages {
  public:
    virtual ~Messages() = default;

    // Shows the text until the person closes it.
    virtual void Show(const QString& text, const QString& title, MessageIcon icon) = 0;

    // A question with Yes, No and Cancel; closing the box is Cancel.
    virtual MessageAnswer AskYesNoCancel(const QString& text, const QString& title) = 0;
};

} // namespace pictorel
