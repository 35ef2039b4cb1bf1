// The scanner behind its program: a page, closing at every moment, and programs that misbehave.
#include "commands/scan/ScannerProcess.h"
#include "picture/ImagingError.h"
#include "programs/scanner/TestScanner.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <memory>

namespace pictorel {
namespace {

constexpr int kLongWait = 20000; // milliseconds

bool WaitUntil(const std::function<bool()>& condition, int milliseconds = kLongWait) {
    QElapsedTimer clock;
    clock.start();
    while (!condition() && clock.elapsed() < milliseconds) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    return condition();
}

class Scanner {
  public:
    explicit Scanner(const QString& program = QCoreApplication::applicationDirPath() + "/pictorel_scanner",
                     std::chrono::milliseconds patience = std::chrono::seconds(20))
        : object(std::make_unique<ScannerProcess>(program, patience)) {
        object->SetSourcesKnownHandler([this] { ++timesKnown; });
    }

    bool Open() {
        object->OpenSourceManager();
        EXPECT_TRUE(object->IsSourceManagerOpen());
        return WaitUntil([&] { return timesKnown > 0; });
    }

    std::unique_ptr<ScannerProcess> object;
    int timesKnown = 0;
};

TEST(ScannerProcess, BringsAPageInAfterTheManagerWasClosed) {
    const TestScanner device({"read-delay true", "read-delay-duration 50000"}, 2);
    Scanner scanner;
    ASSERT_TRUE(scanner.Open());
    EXPECT_EQ(scanner.object->SourceCount(), 2);
    EXPECT_THROW(scanner.object->SelectSource(2), ImagingError);
    scanner.object->SelectSource(1);
    scanner.object->Acquire(false);
    scanner.object->CloseSourceManager();
    EXPECT_TRUE(scanner.object->IsSourceManagerOpen()) << "a page is on its way";
    EXPECT_EQ(scanner.object->AcquiredCount(), 0);
    ASSERT_TRUE(WaitUntil([&] { return scanner.object->AcquiredCount() == 1; }));
    EXPECT_FALSE(scanner.object->IsSourceManagerOpen());
    EXPECT_EQ(scanner.object->PercentAcquired(), 100);
    PixelArray page;
    scanner.object->CopyAcquired(0, page);
    EXPECT_EQ(page.Width(), kTestPageSide);
    EXPECT_EQ(page.Height(), kTestPageSide);
    EXPECT_EQ(page.Details().dotsPerInchX, 200);
    EXPECT_EQ(scanner.object->AcquiredCount(), 0);
    EXPECT_THROW(scanner.object->CopyAcquired(0, page), ImagingError);
    EXPECT_EQ(scanner.timesKnown, 1);
    scanner.timesKnown = 0;
    EXPECT_TRUE(scanner.Open()) << "once more";
    EXPECT_EQ(scanner.object->SourceCount(), 2);
}

TEST(ScannerProcess, AFaultInMidPageIsSaidAndLeavesNoPage) {
    const TestScanner device({"read-status-code \"SANE_STATUS_JAMMED\""});
    Scanner scanner;
    ASSERT_TRUE(scanner.Open());
    scanner.object->Acquire(false);
    ASSERT_TRUE(WaitUntil([&] { return !scanner.object->IsAcquiring(); }));
    EXPECT_EQ(scanner.object->AcquiredCount(), 0);
    EXPECT_NE(scanner.object->TakeFailure().find("jammed"), std::string::npos);
    EXPECT_TRUE(scanner.object->TakeFailure().empty());
    EXPECT_TRUE(scanner.object->IsSourceManagerOpen()) << "another page may be tried";
    EXPECT_THROW(Scanner().object->Acquire(false), ImagingError);
}

// One of the moments of a scan after which the object goes.
TEST(ScannerProcess, NothingOutlivesTheObject) {
    const TestScanner device(
        {"read-limit true", "read-limit-size 100", "read-delay true", "read-delay-duration 200000"});
    for (int moment = 0; moment < 4; ++moment) {
        Scanner scanner;
        scanner.object->OpenSourceManager();
        if (moment >= 1) {
            ASSERT_TRUE(WaitUntil([&] { return scanner.timesKnown > 0; }));
        }
        if (moment >= 2) {
            scanner.object->Acquire(false);
            WaitUntil([&] { return scanner.object->PercentAcquired() > 0; });
        }
        if (moment >= 3) {
            scanner.object->CloseSourceManager();
        }
        QElapsedTimer clock;
        clock.start();
        scanner.object.reset();
        EXPECT_LT(clock.elapsed(), 4000) << moment;
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child is left, " << moment;
        EXPECT_EQ(errno, ECHILD);
    }
}

// A program in the scanner program's place.
class FalseProgram {
  public:
    explicit FalseProgram(const QByteArray& script) {
        QFile file(Path());
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n" + script);
        file.close();
        file.setPermissions(QFile::ReadOwner | QFile::ExeOwner | QFile::WriteOwner);
    }
    QString Path() const { return folder_.filePath("program"); }

  private:
    QTemporaryDir folder_;
};

TEST(ScannerProcess, ProgramsThatOfferNothingAreNoSource) {
    for (const char* const script : {"exit 1", "echo failure no library", "kill -SEGV $$", "sleep 1000",
                                     "echo source a; kill -9 $$", "head -c 3000000 /dev/zero"}) {
        const FalseProgram program(script);
        Scanner scanner(program.Path(), std::chrono::milliseconds(500));
        EXPECT_TRUE(scanner.Open()) << script;
        EXPECT_EQ(scanner.object->SourceCount(), 0) << script;
        EXPECT_FALSE(scanner.object->IsSourceManagerOpen()) << script;
    }
    Scanner missing("/nowhere/at/all");
    EXPECT_TRUE(missing.Open());
    EXPECT_EQ(missing.object->SourceCount(), 0);
}

TEST(ScannerProcess, AProgramThatDiesBeforeTheScanIsSaid) {
    const FalseProgram program("echo source a\necho ready\nsleep 0.2; exit 1");
    Scanner scanner(program.Path());
    ASSERT_TRUE(scanner.Open());
    ASSERT_TRUE(WaitUntil([&] { return !scanner.object->IsSourceManagerOpen(); }));
    EXPECT_THROW(scanner.object->Acquire(false), ImagingError);
    EXPECT_NE(scanner.object->TakeFailure().find("unexpectedly"), std::string::npos);
}

struct MisbehaviourCase {
    const char* afterScan;
    const char* saying;
};

TEST(ScannerProcess, ProgramsThatBreakOffLeaveNoPage) {
    for (const MisbehaviourCase& c :
         {MisbehaviourCase{"kill -SEGV $$", "unexpectedly"}, MisbehaviourCase{"exit 0", "unexpectedly"},
          MisbehaviourCase{"sleep 1000", "does not answer"},
          MisbehaviourCase{"echo page 2 2 200 200; printf 12345678", "unexpectedly"},
          MisbehaviourCase{"echo page 2 2 200 200; printf 12345678; sleep 1000", "does not answer"},
          MisbehaviourCase{"echo page 99999 99999 1 1; sleep 1000", "99999"},
          MisbehaviourCase{"echo page 0 -4; sleep 1000", ""},
          MisbehaviourCase{"echo page; sleep 1000", ""}}) {
        for (const bool closed : {false, true}) {
            const FalseProgram program(QByteArray("echo source a\necho ready\nread command\n") + c.afterScan);
            Scanner scanner(program.Path(), std::chrono::milliseconds(500));
            ASSERT_TRUE(scanner.Open());
            scanner.object->Acquire(false);
            if (closed) {
                scanner.object->CloseSourceManager();
            }
            ASSERT_TRUE(WaitUntil([&] { return !scanner.object->IsAcquiring(); })) << c.afterScan;
            EXPECT_EQ(scanner.object->AcquiredCount(), 0) << c.afterScan;
            const std::string failure = scanner.object->TakeFailure();
            EXPECT_FALSE(failure.empty()) << c.afterScan;
            EXPECT_NE(failure.find(c.saying), std::string::npos) << failure;
        }
    }
}

} // namespace
} // namespace pictorel
