// The scanner program: it lists the sources, then scans a page at each command, see ScannerLines.h.
#include "programs/scanner/SaneDevice.h"
#include "programs/scanner/ScannerLines.h"

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <vector>
#ifdef __linux__
#include <sys/prctl.h>
#endif

namespace {

using pictorel::PixelArray;
namespace scanner = pictorel::scanner;

constexpr unsigned kSecondsToStop = 5;

// The one thing a signal handler may touch.
volatile std::sig_atomic_t stopAsked = 0; // NOLINT

extern "C" void AskToStop(int) {
    stopAsked = 1;
    ::alarm(kSecondsToStop); // a driver that hangs is not waited for
}

// This program ends with the editor, also when that is killed. Being stopped sends the lamp home first.
void EndWithTheEditor() {
    struct sigaction action {};
    action.sa_handler = AskToStop;
    ::sigaction(SIGTERM, &action, nullptr);
#ifdef __linux__
    const pid_t editor = ::getppid();
    ::prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (::getppid() != editor) {
        std::exit(EXIT_FAILURE); // it ended before the line above
    }
#endif
}

// A text within one line.
std::string Line(std::string text) {
    for (char& letter : text) {
        letter = letter == '\n' || letter == '\r' ? ' ' : letter;
    }
    return text;
}

void SendPage(const PixelArray& picture) {
    std::cout << scanner::kPage << ' ' << picture.Width() << ' ' << picture.Height() << ' '
              << picture.Details().dotsPerInchX << ' ' << picture.Details().dotsPerInchY << '\n';
    for (int y = 0; y < picture.Height(); ++y) {
        std::cout.write(reinterpret_cast<const char*>(picture.Row(y)),
                        static_cast<std::streamsize>(picture.RowBytes()));
    }
    std::cout.flush();
}

void Scan(const std::vector<std::string>& sources, std::size_t index) {
    std::optional<scanner::Scanner> device; // parked when all is told
    try {
        if (index >= sources.size()) {
            throw scanner::ScanError("There is no such scanner.");
        }
        scanner::ScanProgress progress;
        progress.report = [](int percent) { std::cout << scanner::kProgress << ' ' << percent << std::endl; };
        progress.isStopped = [] { return stopAsked != 0 || !std::cout; };
        device.emplace(sources[index]);
        SendPage(device->ScanPage({}, progress));
    } catch (const std::exception& error) {
        std::cout << scanner::kFailure << ' ' << Line(error.what()) << std::endl;
    }
}

void Converse() {
    const scanner::SaneSession session;
    const auto sources = session.Sources();
    for (const std::string& source : sources) {
        std::cout << scanner::kSource << ' ' << Line(source) << '\n';
    }
    std::cout << scanner::kSourcesEnd << std::endl;
    for (std::string line; stopAsked == 0 && std::getline(std::cin, line);) {
        std::istringstream words(line);
        std::string command;
        std::size_t index = 0;
        if (words >> command >> index && command == scanner::kScan) {
            Scan(sources, index);
        }
    }
}

} // namespace

int main() {
    EndWithTheEditor();
    try {
        Converse();
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cout << scanner::kFailure << ' ' << Line(error.what()) << std::endl;
        return EXIT_FAILURE;
    }
}
