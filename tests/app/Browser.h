// Stands in for the desktop's browser.
#pragma once

#include <QDesktopServices>
#include <QObject>
#include <QStringList>
#include <QUrl>

namespace pictorel {

// While one lives, it is asked to open what the editor opens under https.
class Browser : public QObject {
    Q_OBJECT

  public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("https"), this, "Open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("https")); }

    QStringList asked;

  public slots:
    void Open(const QUrl& address) { asked.append(address.toString(QUrl::FullyEncoded)); }
};

} // namespace pictorel
