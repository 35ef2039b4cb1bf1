// Offers back what editors left that ended with changes not saved.
#pragma once

#include "commands/FileCommands.h"
#include "editor/Editor.h"
#include "platform/Messages.h"

#include <QImage>
#include <QString>

#include <functional>

namespace pictorel {

class RecoverCommand {
  public:
    // A question about a picture, which is small and may be missing, with Yes, No and Cancel for later.
    using Ask =
        std::function<MessageAnswer(const QString& text, const QString& title, const QImage& picture)>;

    RecoverCommand(Editor& editor, FileCommands& fileCommands, Ask ask);

    // One after the other, the latest first. Yes brings the history back, after "Save Changes ?" where the
    // picture on the screen is changed; No discards what was left; Cancel keeps it and all that follow for
    // the next start.
    void OfferAll();

  private:
    QImage SmallPicture(const RecoveryRecord& record) const;

    Editor& editor_;
    FileCommands& fileCommands_;
    Ask ask_;
};

} // namespace pictorel
