// What the words of the command line ask for, see CommandLine.h.
#include "app/CommandLine.h"

#include "commands/SaveName.h"
#include "platform/Texts.h"

#include <QFileInfo>
#include <QUrl>

namespace pictorel {
namespace {

constexpr QLatin1String kEndOfOptions("--");

constexpr std::string_view kHelp =
    R"(Usage: pictorel [FILE]
Edits photos, one at a time, with sliders that preview live.

  FILE           the picture to open; without it the editor waits for Open
  homepage       opens the home page in the browser and ends
  -h, --help     prints this and ends
  -v, --version  prints the version and ends
)";

bool NamesAFile(const QString& word) {
    return !word.startsWith(u'-') && (word.contains(u'/') || EndsAsPicture(word) || QFileInfo::exists(word));
}

QString PathOf(const QString& word) {
    const QUrl address(word);
    return QFileInfo(address.isLocalFile() ? address.toLocalFile() : word).absoluteFilePath();
}

} // namespace

CommandLine ReadCommandLine(const QStringList& words) {
    CommandLine commandLine{words.join(u' '), {}};
    bool optionsEnded = false;
    for (const QString& word : words) {
        if (!optionsEnded && word == kEndOfOptions) {
            optionsEnded = true;
        } else if (!word.isEmpty() && (optionsEnded || NamesAFile(word))) {
            commandLine.files.append(PathOf(word));
        }
    }
    return commandLine;
}

std::optional<QString> PrintedAnswer(const QStringList& words, const QString& version,
                                     const std::function<QString()>& walls) {
    for (const QString& word : words) {
        if (word == kEndOfOptions) {
            break;
        }
        if (word == QStringLiteral("--help") || word == QStringLiteral("-h")) {
            return FromView(kHelp);
        }
        if (word == QStringLiteral("--version") || word == QStringLiteral("-v")) {
            const QStringList lines{QStringLiteral("Pictorel ") + version,
                                    QStringLiteral("Qt ") + QString::fromLatin1(qVersion())};
            return lines.join(u'\n') + u'\n' + walls();
        }
    }
    return std::nullopt;
}

} // namespace pictorel
