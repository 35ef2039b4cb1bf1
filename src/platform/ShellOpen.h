// Opens a web address with the desktop's own program for it.
#pragma once

class QString;

namespace pictorel {

// Whether it worked is not reported: no browser, no network and a closed desktop are all the person's to see.
void ShellOpen(const QString& address);

} // namespace pictorel
