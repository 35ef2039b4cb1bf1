// Opens a web address, see ShellOpen.h.
#include "platform/ShellOpen.h"

#include <QDesktopServices>
#include <QString>
#include <QUrl>

namespace pictorel {

void ShellOpen(const QString& address) {
    QDesktopServices::openUrl(QUrl(address));
}

} // namespace pictorel
