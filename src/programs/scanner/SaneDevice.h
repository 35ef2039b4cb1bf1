// Scanners through the SANE library: which there are, and one page of one of them.
#pragma once

#include "picture/PixelArray.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace pictorel::scanner {

// What went wrong, as a sentence for the person.
struct ScanError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What is asked of a scanner. One that does not offer it gives what comes nearest.
struct ScanWishes {
    std::string mode = "Color";
    int depth = 8;            // bits per sample
    double dotsPerInch = 200; // both ways
};

// Told while the page comes in.
struct ScanProgress {
    std::function<void(int percent)> report = [](int) {};   // never called where the length is not known
    std::function<bool()> isStopped = [] { return false; }; // true ends the scan with a ScanError
};

// The library from its start to its end; one at a time in a process.
class SaneSession {
  public:
    SaneSession(); // throws ScanError
    ~SaneSession();
    SaneSession(const SaneSession&) = delete;
    SaneSession& operator=(const SaneSession&) = delete;

    // The names of all sources, those of the network included, which may take seconds. Cameras, which the
    // library lists too, stand behind the scanners; the source that SANE_DEFAULT_DEVICE names stands first.
    std::vector<std::string> Sources() const;
};

// A source of the session, open. Its end parks the scanner, which takes its time and may hang in a driver:
// what became of the page should be told before.
class Scanner {
  public:
    explicit Scanner(const std::string& source); // throws ScanError
    ~Scanner();
    Scanner(const Scanner&) = delete;
    Scanner& operator=(const Scanner&) = delete;

    // One page of the whole glass, its resolution in its details. Throws ScanError, and ImagingError where
    // what the scanner sends makes no picture.
    PixelArray ScanPage(const ScanWishes& wishes, const ScanProgress& progress) const;

  private:
    void* handle_ = nullptr; // the library's
};

} // namespace pictorel::scanner
