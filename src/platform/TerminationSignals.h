// The signals that ask a process to end, handed over to the event loop.
#pragma once

#include <QSocketNotifier>
#include <signal.h>

#include <array>
#include <functional>
#include <memory>

namespace pictorel {

// From its making on, SIGTERM, SIGINT and SIGHUP no longer end the process: the event loop, also one of a
// dialog, calls the handler, once for any number that came meanwhile. Signals that came before there was a
// handler are kept for it. Under nohup SIGHUP stays ignored. One object a process.
class TerminationSignals {
  public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    void SetHandler(std::function<void()> handler);

  private:
    static constexpr std::array kSignals{SIGTERM, SIGINT, SIGHUP};

    std::array<struct sigaction, kSignals.size()> before_{};
    int readEnd_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace pictorel
