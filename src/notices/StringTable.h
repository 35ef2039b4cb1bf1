// The numbered texts of the application, as the rooms that show them see the table.
#pragma once

#include <QString>

namespace pictorel {

// Entry numbers of the texts.
enum class Text {
    Title = 12,
    SiteAddressShown = 17,
    VersionListAddress = 19,
    Disclaimer = 21,
    FirstLink = 22, // of web links 1 to 7, entries 22 to 28
    FirstToolName = 29,
    FirstToolDescription = 30,
    SecondToolName = 31,
    SecondToolDescription = 32,
};

class StringTable {
  public:
    virtual ~StringTable() = default;

    virtual QString Entry(int number) const = 0; // empty for a number that the table does not have
    QString Entry(Text text) const { return Entry(static_cast<int>(text)); }
};

} // namespace pictorel
