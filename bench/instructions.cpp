// How many instructions the engine needs for a pixel: counted by single steps, since the processor's own
// counters are closed on most virtual machines. Usage: instructions [OPERATION...].
#include "EngineOperations.h"

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace pictorel;
using namespace pictorel::bench;

// Small enough for one thread, wide enough for long rows.
constexpr int kWidth = 512;
constexpr int kHeight = 48;

PixelArray Made() {
    PixelArray picture(kWidth, kHeight);
    std::uint8_t* const rows = picture.WritableRows();
    for (int y = 0; y < kHeight; ++y) {
        for (int x = 0; x < kWidth; ++x) {
            std::uint8_t* const pixel = rows + y * picture.Stride() + 4 * x;
            const int grain = (x * 40503 + y * 9973) >> 5 & 15;
            pixel[0] = static_cast<std::uint8_t>(x / 9 + grain);
            pixel[1] = static_cast<std::uint8_t>(y / 2 + grain);
            pixel[2] = static_cast<std::uint8_t>((x + y) / 11 + grain);
            pixel[3] = 255;
        }
    }
    return picture;
}

// The child: does the work once to choose vectors and take memory, then between two signals.
[[noreturn]] void Work(const EngineOperation& operation) {
    const PixelArray picture = Made();
    PixelArray result = operation.run(picture);
    result = {};
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGUSR1);
    result = operation.run(picture);
    raise(SIGUSR2);
    _exit(0);
}

long StepsOf(const EngineOperation& operation) {
    const pid_t child = fork();
    if (child == 0) {
        Work(operation);
    }
    int status = 0;
    waitpid(child, &status, 0);
    long steps = 0;
    while (WIFSTOPPED(status) && WSTOPSIG(status) != SIGUSR2) {
        ptrace(PTRACE_SINGLESTEP, child, nullptr, nullptr);
        waitpid(child, &status, 0);
        ++steps;
    }
    kill(child, SIGKILL);
    waitpid(child, &status, 0);
    return steps;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> wanted(argv + 1, argv + argc);
    std::printf("instructions per pixel of %d x %d, on one thread\n", kWidth, kHeight);
    for (const EngineOperation& operation : kEngineOperations) {
        if (wanted.empty() || std::find(wanted.begin(), wanted.end(), operation.name) != wanted.end()) {
            std::printf("%-24s %8.1f\n", operation.name,
                        static_cast<double>(StepsOf(operation)) / (kWidth * kHeight));
            std::fflush(stdout);
        }
    }
    return 0;
}
