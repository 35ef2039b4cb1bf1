// The application's table of texts, kept enciphered in the program.
#pragma once

#include "notices/StringTable.h"

namespace pictorel {

class ApplicationStrings : public StringTable {
  public:
    using StringTable::Entry;
    QString Entry(int number) const override;
};

} // namespace pictorel
