// The Scan command, see ScanCommand.h.
#include "commands/scan/ScanCommand.h"

#include "editor/ImageCodec.h"
#include "editor/SaveFormats.h"
#include "platform/CarryOn.h"

#include <QApplication>

#include <utility>

namespace pictorel {
namespace {

constexpr int kFullPercent = 100;

} // namespace

ScanCommand::ScanCommand(Editor& editor, FileCommands& fileCommands, ImageTwain& imageTwain,
                         ScanCommandControls controls, ScanCommandServices services, Messages& messages)
    : editor_(editor),
      fileCommands_(fileCommands),
      imageTwain_(imageTwain),
      controls_(controls),
      services_(std::move(services)),
      messages_(messages) {
    events_.On(controls_.ScanButton, &PushButton::clicked, [this] { Scan(); });
    events_.On(controls_.Timer_Scanner, &QTimer::timeout, [this] { Timer_Scanner_Timer(); });
    imageTwain_.SetSourcesKnownHandler(Events::Guarded([this] { SourcesKnown(); }));
}

void ScanCommand::Scan() {
    if (imageTwain_.IsSourceManagerOpen() || controls_.Timer_Scanner.isActive()) {
        return;
    }
    CarryOn([&] { services_.setCommandsEnabled(false); }, //
            [&] { imageTwain_.OpenSourceManager(); });
    if (!imageTwain_.IsSourceManagerOpen()) {
        Finish();
    }
}

// The rest of the click, once the drivers have been asked; the network's may take seconds.
void ScanCommand::SourcesKnown() {
    if (abandoned_) {
        return;
    }
    if (imageTwain_.SourceCount() < 1) {
        CarryOn([&] {
            messages_.Show(QStringLiteral("No Scanner Detected!"), QString(), MessageIcon::Exclamation);
        });
    } else if (imageTwain_.IsSourceManagerOpen()) {
        bool goOn = false;
        CarryOn([&] { goOn = fileCommands_.OfferToSaveChanges(); });
        if (goOn) {
            Acquire();
        }
    }
    CarryOn([&] { imageTwain_.CloseSourceManager(); });
    if (!controls_.Timer_Scanner.isActive()) {
        Finish();
    }
}

void ScanCommand::Acquire() {
    CarryOn([&] { services_.endAttention(); }, // the notice that says how to begin would lie over the page
            [&] { controls_.ScanButton.SetEnabled(false); }, //
            [&] { controls_.Timer_Scanner.start(); },        //
            [&] { imageTwain_.SelectSource(0); },            //
            [&] { imageTwain_.Acquire(false); },             //
            [&] { controls_.ScanButton.SetEnabled(true); },  //
            [&] {
                controls_.ProgressBarControl.setValue(0);
                controls_.ProgressBarControl.SetVisible(true);
            });
}

void ScanCommand::Timer_Scanner_Timer() {
    // Neither in the midst of a command nor under a question about the open picture ("Save Changes ?") is it
    // replaced by another.
    if (editor_.IsBusy() || QApplication::activeModalWidget() != nullptr) {
        return;
    }
    if (imageTwain_.AcquiredCount() >= 1) {
        controls_.Timer_Scanner.stop();
        TakePage();
        return;
    }
    CarryOn([&] {
        controls_.ProgressBarControl.setValue(imageTwain_.PercentAcquired() *
                                              controls_.ProgressBarControl.maximum() / kFullPercent);
    });
    if (!imageTwain_.IsAcquiring()) {
        controls_.Timer_Scanner.stop();
        Finish();
        CarryOn([&] {
            messages_.Show(QString::fromStdString(imageTwain_.TakeFailure()), QString(),
                           MessageIcon::Critical);
        });
    }
}

void ScanCommand::TakePage() {
    const auto refuse = [this] {
        CarryOn([&] {
            messages_.Show(QStringLiteral("Can not save image file!"), QString(), MessageIcon::Critical);
        });
    };
    const QString fileName = editor_.Document.WorkingFile(QStringLiteral("tmp_scan.jpg"));
    if (!WritePage(fileName)) {
        Finish();
        refuse();
        return;
    }
    bool loaded = false;
    CarryOn([&] { loaded = editor_.Files.LoadImageFile(kSlot, fileName); });
    Finish();
    if (loaded) {
        editor_.Document.PictureName = QObject::tr("Scan");
        editor_.Document.PictureFolder.clear();
        fileCommands_.ShowAsFreshlyOpened();
    } else {
        refuse();
    }
    CarryOn([&] { editor_.Document.FileSystem.Delete(fileName); });
}

bool ScanCommand::WritePage(const QString& fileName) {
    return StopAtFirstError([&] {
        PixelArray page;
        imageTwain_.CopyAcquired(0, page);
        editor_.Document.ImageCodec->SetQuality(kSaveQuality);
        editor_.Document.ImageCodec->Write(page, fileName.toStdString(), "JPG");
        return true;
    });
}

void ScanCommand::Finish() {
    CarryOn([&] { controls_.ProgressBarControl.SetVisible(false); },
            [&] { services_.setCommandsEnabled(true); });
}

void ScanCommand::Abandon() {
    abandoned_ = true;
    controls_.Timer_Scanner.stop();
}

} // namespace pictorel
