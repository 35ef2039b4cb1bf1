// Every road out of the editor, see ShutDown.h.
#include "app/ShutDown.h"

#include "platform/CarryOn.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QSessionManager>
#include <QThread>

namespace pictorel {
namespace {

// The number of nested event loops while no handler runs one of its own, once the window is on the screen.
constexpr int kMainLoopOnly = 1;

constexpr int kAnswerHolds = 30'000; // milliseconds

// Closes what lies over the window and is waited for; false where nothing does.
bool CloseTopmostOverlay() {
    if (QWidget* const popup = QApplication::activePopupWidget()) {
        return popup->close();
    }
    QWidget* const modal = QApplication::activeModalWidget();
    if (auto* const dialog = qobject_cast<QDialog*>(modal)) {
        dialog->reject();
    } else if (modal != nullptr) {
        modal->close();
    }
    return modal != nullptr;
}

} // namespace

ShutDown::ShutDown(QWidget& window, ShutDownParts parts) : window_(window), parts_(parts) {
    // Raised by an event loop that waits, never by a handler that lets pending events run.
    events_.On(*QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
               [this] { GoOn(); });
    events_.On(*qApp, &QGuiApplication::commitDataRequest,
               [this](QSessionManager& manager) { CommitSession(manager); });
    events_.On(*qApp, &QGuiApplication::saveStateRequest, [](QSessionManager& manager) {
        manager.setRestartHint(QSessionManager::RestartNever); // nothing is kept from run to run
    });
}

void ShutDown::Form_Close(QCloseEvent& event) {
    const bool loopRuns = QThread::currentThread()->loopLevel() > 0;
    if (!isMoment_ && loopRuns) {
        event.ignore();
        RequestEnd();
        return;
    }
    bool close = false;
    CarryOn([&] { close = Form_QueryUnload(); });
    if (!close) {
        event.ignore();
        return;
    }
    Form_Unload();
    event.accept();
    if (loopRuns) {
        QCoreApplication::exit(); // Form_Terminate: whatever is still open goes without further events
    }
}

void ShutDown::RequestEnd() {
    if (!asking_) { // otherwise the question is on the screen already
        endRequested_ = true;
        QAbstractEventDispatcher::instance()->wakeUp();
    }
}

void ShutDown::GoOn() {
    if (!endRequested_ || asking_) {
        return;
    }
    if (parts_.splash.CurrentState() != PopupControl::Closed) {
        parts_.splash.Close();
    } else if (CloseTopmostOverlay()) {
        QAbstractEventDispatcher::instance()->wakeUp(); // and look again when its handler has ended
    } else if (!parts_.editor.IsBusy() && window_.isVisible() &&
               QThread::currentThread()->loopLevel() == kMainLoopOnly) {
        endRequested_ = false;
        isMoment_ = true;
        window_.close();
        isMoment_ = false;
    }
}

bool ShutDown::Form_QueryUnload() {
    const bool answered = answeredForSession_.SharesPixelsWith(parts_.editor.Document.ImagePixels) &&
                          sinceAnswer_.elapsed() < kAnswerHolds;
    answeredForSession_ = PixelArray();
    if (answered) {
        return true;
    }
    if (asking_) {
        return false;
    }
    asking_ = true;
    bool mayClose = false;
    CarryOn([&] { mayClose = parts_.fileCommands.OfferToSaveChanges(); });
    asking_ = false;
    endRequested_ = false; // asked for and answered
    return mayClose;
}

void ShutDown::Form_Unload() {
    CarryOn([&] { parts_.popups.BlinkTarget = nullptr; }, //
            [&] { parts_.webBrowser.Stop(); },            //
            [&] { parts_.editor.History.DeleteWorkingFiles(); }, [&] { parts_.editor.ForgetChanges(); },
            [&] { parts_.scanCommand.Abandon(); },           //
            [&] { parts_.imageTwain.CloseSourceManager(); }, //
            [&] { parts_.preview.Unload(); });
}

bool ShutDown::SessionMayEnd(bool mayAsk) {
    if (!mayAsk) {
        return true;
    }
    if (!Form_QueryUnload()) {
        return false;
    }
    answeredForSession_ = parts_.editor.Document.ImagePixels;
    sinceAnswer_.start();
    return true;
}

void ShutDown::CommitSession(QSessionManager& manager) {
    const bool mayAsk = manager.allowsInteraction();
    if (!SessionMayEnd(mayAsk)) {
        manager.cancel();
    }
    if (mayAsk) {
        manager.release();
    }
}

} // namespace pictorel
