// The scanner, reached through the scanner program, so that no driver can block or end the editor.
#pragma once

#include "commands/scan/ImageTwain.h"

#include <QObject>
#include <QProcess>
#include <QString>
#include <QTimer>

#include <chrono>

namespace pictorel {

// One program runs for each opening of the source manager. Nothing of it outlives this object.
class ScannerProcess : public ImageTwain {
  public:
    // Where the program says nothing for as long as `patience`, its scanner is given up. Lamps take a minute
    // to warm up.
    explicit ScannerProcess(QString program, std::chrono::milliseconds patience = std::chrono::minutes(2));
    ~ScannerProcess() override;

    bool IsSourceManagerOpen() const override { return process_ != nullptr; }
    void OpenSourceManager() override;
    std::int32_t SourceCount() const override { return sourceCount_; }
    void SetSourcesKnownHandler(std::function<void()> handler) override;
    void SelectSource(std::int32_t source) override;
    void Acquire(bool showDialog) override;
    void CloseSourceManager() override;
    bool IsAcquiring() const override { return phase_ == Phase::Acquiring; }
    int PercentAcquired() const override { return percent_; }
    std::int32_t AcquiredCount() const override { return page_.IsEmpty() ? 0 : 1; }
    void CopyAcquired(std::int32_t page, PixelArray& picture) override;
    std::string TakeFailure() override;

  private:
    enum class Phase { Looking, Ready, Acquiring };

    void ReadOutput();
    void HandleLine(const QByteArray& line);
    void BeginPage(const QByteArray& sizes);
    bool ReadRow(); // false where its bytes have not all come
    void SourcesAreKnown();
    void EndAcquisition(const QString& failure); // empty: the page is whole
    void EndedByItself();
    void BreakOff(const QString& failure);
    void ProgramEnded(const QString& failure);
    void Retire(); // lets go of the program, which ends by itself

    QString program_;
    std::function<void()> sourcesKnown_;
    QObject owner_; // of the connections, and of programs that are about to end
    QTimer silence_;
    QProcess* process_ = nullptr; // owner_'s child
    Phase phase_ = Phase::Looking;
    bool closeAsked_ = false;
    std::int32_t sourceCount_ = 0;
    std::int32_t selected_ = 0;
    int percent_ = 0;
    PixelArray incoming_; // the page while its rows arrive
    int rowsReceived_ = 0;
    PixelArray page_; // the page that waits
    QString failure_;
};

} // namespace pictorel
