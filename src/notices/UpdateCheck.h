// Asks the list of published versions whether there is a newer one than the running one.
#pragma once

#include "controls/WebBrowser.h"
#include "notices/StringTable.h"

#include <QString>

namespace pictorel {

// Loads a page and returns the text of its body, pumping window events until the load is complete. Empty
// where it failed; the browser bounds how long that can take.
QString ReadWebPageText(WebBrowser& browser, const QString& address);

// What is new in the versions above `currentVersion`. A line of the page is "version/item/item/.../"; what
// stands behind its last "/" is not shown, and versions compare as decimal numbers. Empty where nothing is
// newer, and where a line with a "/" does not begin with a number.
QString BuildUpdateNotes(const QString& pageText, const QString& currentVersion);

class UpdateCheck {
  public:
    // `version` is the running one, "major.minor".
    UpdateCheck(const StringTable& strings, QString version);

    // Whether a newer version is published; what is new is then in UpdateNotes. The environment variable
    // PICTOREL_UPDATE_URL names another list than the maker's; set to nothing it forbids the question.
    bool CheckForUpdate(WebBrowser& browser);

    QString UpdateNotes;

  private:
    QString Address() const;

    const StringTable& strings_;
    QString version_;
};

} // namespace pictorel
