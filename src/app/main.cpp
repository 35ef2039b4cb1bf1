// The process: it loads the main window, and the window's end is its end.
#include "app/CommandLine.h"
#include "app/StartUp.h"
#include "app/frmMain.h"
#include "editor/decoding/WallsText.h"
#include "platform/Folders.h"
#include "platform/TerminationSignals.h"
#include "platform/WorkingFolder.h"

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QSettings>
#include <QStyleFactory>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

constexpr std::array kIconSizes{16, 24, 32, 48, 64, 72, 96, 128};

QIcon ApplicationIcon() {
    QIcon icon;
    for (const int size : kIconSizes) {
        icon.addFile(pictorel::ApplicationFolder() +
                     pictorel::PlatformPath(QStringLiteral("\\pics\\app_icon_%1.png").arg(size)));
    }
    return icon;
}

std::optional<QString> PrintedAnswer(int argumentCount, char* arguments[]) {
    QStringList words;
    for (int i = 1; i < argumentCount; ++i) {
        words.append(QString::fromLocal8Bit(arguments[i]));
    }
    return pictorel::PrintedAnswer(words, QStringLiteral(PICTOREL_VERSION), [&] {
        const QCoreApplication application(argumentCount, arguments); // knows the program's folder
        const QString decoder = pictorel::HelperProgram(QStringLiteral("pictorel_decoder"));
        return QString::fromStdString(pictorel::WallsText(decoder.toStdString()));
    });
}

struct RemovedAtExit {
    std::shared_ptr<pictorel::WorkingFolder> folder;
    ~RemovedAtExit() { folder->RemoveUnlessRecoverable(); }
};

} // namespace

int main(int argumentCount, char* arguments[]) {
    if (const auto answer = PrintedAnswer(argumentCount, arguments)) { // there need be no display for these
        return std::fputs(answer->toLocal8Bit().constData(), stdout) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
    }
    QApplication application(argumentCount, arguments);
    QApplication::setApplicationName(QStringLiteral("Pictorel"));
    QApplication::setApplicationVersion(QStringLiteral(PICTOREL_VERSION));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setQuitOnLastWindowClosed(false); // notices come and go while the main window stays
    QApplication::setWindowIcon(ApplicationIcon());
    QApplication::setFont(QFont(QStringLiteral("Arial"), 9)); // points

    pictorel::TerminationSignals termination; // before there are files that a signal could leave behind
    std::unique_ptr<pictorel::frmMain> window;
    try {
        window = std::make_unique<pictorel::frmMain>();
    } catch (const std::exception& error) {
        pictorel::ShowStartFailure(error);
        return EXIT_FAILURE;
    }
    termination.SetHandler([&window] { window->End().RequestEnd(); });
    // Where the display is lost, the process ends inside Qt by std::exit, past the window; statics still go.
    static const RemovedAtExit workingFiles{window->Document().WorkingFolder};
    // The editor keeps no settings: what the toolkit's dialogs would remember goes with the working files.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, window->Document().GetTempFolder());
    switch (window->Start().Form_Load(pictorel::ReadCommandLine(QApplication::arguments().mid(1)))) {
        case pictorel::StartResult::HomePage:
            return pictorel::kHomePageExitCode;
        case pictorel::StartResult::Failed:
            return EXIT_FAILURE;
        case pictorel::StartResult::Started:
            break;
    }
    return QApplication::exec();
}
