// The version check, see UpdateCheck.h.
#include "notices/UpdateCheck.h"

#include "platform/CarryOn.h"
#include "platform/Numbers.h"
#include "platform/PumpEvents.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <QStringList>

#include <cmath>
#include <utility>

namespace pictorel {
namespace {

constexpr const char* kAddressVariable = "PICTOREL_UPDATE_URL";
constexpr int kItemIndent = 17;
const QLatin1String kLineEnd("\r\n");

double ToDecimal(const QString& text) {
    bool isNumber = false;
    const double value = text.trimmed().toDouble(&isNumber);
    if (!isNumber || !std::isfinite(value)) {
        throw NumberError("Not a number: " + text.toStdString());
    }
    return value;
}

QString NotesFrom(const QString& pageText, const QString& currentVersion) {
    QString notes;
    for (const QString& line : pageText.split(kLineEnd)) {
        const QStringList fields = line.split(u'/');
        for (qsizetype j = 0; j + 1 < fields.size(); ++j) {
            if (!(ToDecimal(currentVersion) < ToDecimal(fields[0]))) {
                continue;
            }
            const QString lead =
                j == 0 ? QStringLiteral(" Version ") : QString(kItemIndent, u' ') + QStringLiteral("- ");
            notes += lead + fields[j] + kLineEnd;
        }
        if (!notes.trimmed().isEmpty()) {
            notes += kLineEnd;
        }
    }
    return notes;
}

} // namespace

QString ReadWebPageText(WebBrowser& browser, const QString& address) {
    const QPointer<WebBrowser> page(&browser);
    page->Navigate(address);
    while (page != nullptr && page->CurrentState() != WebBrowser::Complete) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    LetAllEventsRun();
    return page != nullptr ? page->BodyText() : QString();
}

QString BuildUpdateNotes(const QString& pageText, const QString& currentVersion) {
    QString notes;
    StopAtFirstError([&] {
        notes = NotesFrom(pageText, currentVersion);
        return true;
    });
    return notes;
}

UpdateCheck::UpdateCheck(const StringTable& strings, QString version)
    : strings_(strings), version_(std::move(version)) {}

QString UpdateCheck::Address() const {
    if (qEnvironmentVariableIsSet(kAddressVariable)) {
        return qEnvironmentVariable(kAddressVariable).trimmed();
    }
    QString address = strings_.Entry(Text::VersionListAddress);
    address.replace(QStringLiteral("PRODUCTNAME"), strings_.Entry(Text::Title), Qt::CaseInsensitive);
    address.replace(QStringLiteral("VERSION"), version_, Qt::CaseInsensitive);
    return address.replace(u' ', QStringLiteral("%20"));
}

bool UpdateCheck::CheckForUpdate(WebBrowser& browser) {
    QString page;
    const QString address = Address();
    if (!address.isEmpty()) {
        CarryOn([&] { page = ReadWebPageText(browser, address).trimmed(); });
    }
    if (page.isEmpty() || page == u"0") {
        return false;
    }
    UpdateNotes = BuildUpdateNotes(page, version_);
    return !UpdateNotes.trimmed().isEmpty();
}

} // namespace pictorel
