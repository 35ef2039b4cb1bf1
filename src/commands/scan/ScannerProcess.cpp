// The scanner behind the scanner program, see ScannerProcess.h.
#include "commands/scan/ScannerProcess.h"

#include "picture/ImagingError.h"
#include "programs/scanner/ScannerLines.h"

#include <QDir>
#include <sys/types.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace pictorel {
namespace {

constexpr int kParkingTime = 2000; // milliseconds in which a scanner that is stopped sends its lamp home

// What follows the word on the line, if the line begins with it.
bool TakeWord(const QByteArray& line, const char* word, QByteArray& rest) {
    const QByteArray wanted(word);
    if (!line.startsWith(wanted) || (line.size() > wanted.size() && line[wanted.size()] != ' ')) {
        return false;
    }
    rest = line.mid(wanted.size()).trimmed();
    return true;
}

// Ends the program together with whatever its driver started.
void Kill(QProcess& process) {
    if (process.state() != QProcess::NotRunning) {
        ::kill(-static_cast<pid_t>(process.processId()), SIGKILL);
        process.kill();
        process.waitForFinished();
    }
}

} // namespace

ScannerProcess::ScannerProcess(QString program, std::chrono::milliseconds patience)
    : program_(std::move(program)) {
    silence_.setSingleShot(true);
    silence_.setInterval(patience);
    QObject::connect(&silence_, &QTimer::timeout, &owner_, [this] {
        BreakOff(QStringLiteral("The scanner does not answer. It may have been switched off."));
    });
}

ScannerProcess::~ScannerProcess() {
    if (process_ != nullptr) {
        process_->disconnect();
        if (phase_ == Phase::Acquiring) {
            process_->terminate();
            process_->waitForFinished(kParkingTime);
        }
    }
    for (QProcess* const leaving : owner_.findChildren<QProcess*>()) {
        leaving->disconnect();
        if (leaving != process_) {
            leaving->waitForFinished(kParkingTime); // no time at all but for a driver that hangs
        }
        Kill(*leaving);
    }
}

void ScannerProcess::OpenSourceManager() {
    if (process_ != nullptr) {
        return;
    }
    sourceCount_ = 0;
    selected_ = 0;
    closeAsked_ = false;
    failure_.clear();
    phase_ = Phase::Looking;
    process_ = new QProcess(&owner_);
    process_->setProcessChannelMode(QProcess::ForwardedErrorChannel); // drivers write their troubles there
    QObject::connect(process_, &QProcess::readyReadStandardOutput, &owner_, [this] { ReadOutput(); });
    QObject::connect(process_, &QProcess::finished, &owner_, [this] { EndedByItself(); });
    QObject::connect(process_, &QProcess::errorOccurred, &owner_, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            EndedByItself();
        }
    });
    // A process group of its own: Ctrl+C in the editor's terminal asks the editor alone, and what a driver
    // starts can be ended with it.
    process_->setChildProcessModifier([] { ::setpgid(0, 0); });
    // The library looks for its settings in the current folder too, which may be one of somebody's pictures.
    process_->setWorkingDirectory(QDir::rootPath());
    silence_.start();
    process_->start(program_, QStringList());
}

void ScannerProcess::SetSourcesKnownHandler(std::function<void()> handler) {
    sourcesKnown_ = std::move(handler);
}

void ScannerProcess::SelectSource(std::int32_t source) {
    if (source < 0 || source >= sourceCount_) {
        throw ImagingError(ImagingFailure::InvalidValue, "There is no such scanner.");
    }
    selected_ = source;
}

void ScannerProcess::Acquire(bool /*showDialog*/) {
    if (process_ == nullptr || phase_ != Phase::Ready || sourceCount_ == 0 || closeAsked_) {
        throw ImagingError(ImagingFailure::InvalidValue, "No scanner is open for a scan.");
    }
    page_ = PixelArray();
    failure_.clear();
    percent_ = 0;
    phase_ = Phase::Acquiring;
    silence_.start();
    process_->write(QByteArray(scanner::kScan) + ' ' + QByteArray::number(selected_) + '\n');
}

void ScannerProcess::CloseSourceManager() {
    if (process_ == nullptr) {
        return;
    }
    closeAsked_ = true;
    if (IsAcquiring()) {
        process_->closeWriteChannel(); // the program ends after the page at hand
    } else {
        Retire();
    }
}

void ScannerProcess::CopyAcquired(std::int32_t page, PixelArray& picture) {
    if (page != 0 || page_.IsEmpty()) {
        throw ImagingError(ImagingFailure::InvalidValue, "There is no such scanned page.");
    }
    picture = std::exchange(page_, PixelArray());
}

std::string ScannerProcess::TakeFailure() {
    return std::exchange(failure_, QString()).toStdString();
}

void ScannerProcess::ReadOutput() {
    while (process_ != nullptr) {
        if (!incoming_.IsEmpty()) {
            if (!ReadRow()) {
                break;
            }
        } else if (process_->canReadLine()) {
            HandleLine(process_->readLine().trimmed());
        } else {
            break;
        }
    }
    if (silence_.isActive()) {
        silence_.start();
    }
}

void ScannerProcess::HandleLine(const QByteArray& line) {
    QByteArray rest;
    if (TakeWord(line, scanner::kFailure, rest)) {
        if (IsAcquiring()) {
            EndAcquisition(QString::fromUtf8(rest));
        }
    } else if (phase_ == Phase::Looking) {
        if (TakeWord(line, scanner::kSource, rest)) {
            ++sourceCount_;
        } else if (TakeWord(line, scanner::kSourcesEnd, rest)) {
            SourcesAreKnown();
        }
    } else if (IsAcquiring()) {
        if (TakeWord(line, scanner::kProgress, rest)) {
            percent_ = rest.toInt();
        } else if (TakeWord(line, scanner::kPage, rest)) {
            BeginPage(rest);
        }
    }
}

void ScannerProcess::BeginPage(const QByteArray& sizes) {
    const QList<QByteArray> numbers = sizes.split(' ');
    try {
        const auto number = [&](int i) { return numbers.value(i); };
        incoming_ = PixelArray(number(0).toInt(), number(1).toInt());
        Metadata details;
        details.dotsPerInchX = number(2).toDouble();
        details.dotsPerInchY = number(3).toDouble();
        incoming_.SetDetails(std::move(details));
        rowsReceived_ = 0;
    } catch (const ImagingError& error) {
        BreakOff(QString::fromUtf8(error.what())); // the rows that follow have no place
    }
}

bool ScannerProcess::ReadRow() {
    const auto rowBytes = static_cast<qint64>(incoming_.RowBytes());
    if (process_->bytesAvailable() < rowBytes) {
        return false;
    }
    std::uint8_t* const row = incoming_.WritableRows() + rowsReceived_ * incoming_.Stride();
    process_->read(reinterpret_cast<char*>(row), rowBytes);
    if (++rowsReceived_ == incoming_.Height()) {
        page_ = std::exchange(incoming_, PixelArray());
        EndAcquisition(QString());
    }
    return true;
}

void ScannerProcess::SourcesAreKnown() {
    silence_.stop();
    phase_ = Phase::Ready;
    // Queued: the handler may show a question, and this program's output must stay readable meanwhile.
    QMetaObject::invokeMethod(
        &owner_,
        [this] {
            if (sourcesKnown_) {
                sourcesKnown_();
            }
        },
        Qt::QueuedConnection);
}

void ScannerProcess::EndAcquisition(const QString& failure) {
    silence_.stop();
    incoming_ = PixelArray();
    failure_ = failure;
    phase_ = Phase::Ready;
    if (closeAsked_) {
        Retire();
    }
}

void ScannerProcess::EndedByItself() {
    ReadOutput(); // what it said last
    ProgramEnded(QStringLiteral("The scanner's driver ended unexpectedly. Nothing was scanned."));
}

void ScannerProcess::BreakOff(const QString& failure) {
    if (process_ != nullptr) {
        process_->disconnect();
        Kill(*process_);
        ProgramEnded(failure);
    }
}

void ScannerProcess::ProgramEnded(const QString& failure) {
    if (process_ == nullptr) {
        return;
    }
    const Phase phase = phase_;
    Retire();
    if (phase == Phase::Looking) {
        sourceCount_ = 0;
        SourcesAreKnown();
    } else {
        EndAcquisition(failure); // also before it began: the next one finds no scanner
    }
}

void ScannerProcess::Retire() {
    if (process_ == nullptr) {
        return;
    }
    silence_.stop();
    QProcess* const process = std::exchange(process_, nullptr);
    process->disconnect();
    if (process->state() == QProcess::NotRunning) {
        process->deleteLater();
        return;
    }
    QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
    if (phase_ == Phase::Looking) {
        process->kill(); // no scanner is open yet
    } else {
        process->closeWriteChannel();
    }
}

} // namespace pictorel
