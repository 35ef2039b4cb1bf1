// The signals that ask a process to end, see TerminationSignals.h.
#include "platform/TerminationSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <utility>

namespace pictorel {
namespace {

// Where the signal handler writes. A handler is given nothing but the signal's number, so this has to be
// global; -1 while there is no object.
std::atomic<int> writeEnd = -1; // NOLINT
static_assert(std::atomic<int>::is_always_lock_free, "only then may a signal handler read it");

extern "C" void WriteSignal(int) {
    const int error = errno;
    const char byte = 0;
    // A full pipe is as good as a written one: the event loop is going to be told.
    [[maybe_unused]] const ssize_t written = ::write(writeEnd, &byte, 1);
    errno = error;
}

} // namespace

TerminationSignals::TerminationSignals() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return; // then the signals end the process as they always did
    }
    readEnd_ = ends[0];
    writeEnd = ends[1];
    struct sigaction action {};
    action.sa_handler = WriteSignal;
    action.sa_flags = SA_RESTART;
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], nullptr, &before_[i]);
        if (kSignals[i] != SIGHUP || before_[i].sa_handler != SIG_IGN) {
            ::sigaction(kSignals[i], &action, nullptr);
        }
    }
}

TerminationSignals::~TerminationSignals() {
    notifier_.reset();
    if (readEnd_ < 0) {
        return;
    }
    for (std::size_t i = 0; i < kSignals.size(); ++i) {
        ::sigaction(kSignals[i], &before_[i], nullptr);
    }
    ::close(writeEnd.exchange(-1));
    ::close(readEnd_);
}

void TerminationSignals::SetHandler(std::function<void()> handler) {
    if (readEnd_ < 0) {
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(readEnd_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [readEnd = readEnd_, handler = std::move(handler)] {
                         std::array<char, 64> bytes{};
                         while (::read(readEnd, bytes.data(), bytes.size()) > 0) {
                         }
                         handler();
                     });
}

} // namespace pictorel
