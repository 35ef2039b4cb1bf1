// The walls, each alone and all together, against a program that tries to get through; and the same attempts
// without walls, so that a test which could not fail would be noticed.
#include "editor/TemporaryFolder.h"
#include "programs/decoder/WallBreaker.h"
#include "programs/decoder/Walls.h"

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

namespace pictorel::decoder::test {
namespace {

using pictorel::test::TemporaryFolder;

struct Attempt {
    const char* name;
    std::uint32_t keptOutBy;     // the walls that refuse it, each alone
    bool succeedsWithout = true; // false where a machine without walls may refuse it for reasons of its own
};

#ifdef PICTOREL_SANITIZED // whose reports the filter lets pass
constexpr std::uint32_t kAgainstWriting = kFiles;
#else
constexpr std::uint32_t kAgainstWriting = kSystemCalls | kFiles;
#endif

// NOLINTNEXTLINE(cert-err58-cpp): without its table no test could run
const std::vector<Attempt> kAttempts{
    {"open a file", kSystemCalls | kFileSystem},
    {"open by the newer call", kSystemCalls | kFileSystem},
    {"make a file", kSystemCalls | kFileSystem, false},
    {"list a folder", kSystemCalls | kFileSystem},
    {"open what is open once more", kSystemCalls | kFileSystem},
    {"make a folder", kSystemCalls | kFileSystem},
    {"open a socket", kSystemCalls},
    {"open a local socket", kSystemCalls},
    {"connect", kSystemCalls},
    {"fork", kSystemCalls},
    {"clone a process", kSystemCalls},
    {"clone by the newer call", kSystemCalls},
    {"execute", kSystemCalls | kFileSystem},
    {"write to a file", kAgainstWriting},
    {"write at a place", kSystemCalls | kFiles},
    {"let a file grow", kSystemCalls | kFiles},
    {"let shared memory grow", kSystemCalls | kFiles},
    {"have shared memory", kSystemCalls},
    {"send elsewhere", kSystemCalls},
    {"be traced", kSystemCalls},
    {"trace", kSystemCalls, false},
    {"read other memory", kSystemCalls, false},
    {"signal", kSystemCalls},
    {"map code", kSystemCalls},
    {"turn data into code", kSystemCalls},
    {"take memory", kMemory},
    {"reserve addresses", kMemory},
    {"run for long", kProcessorTime},
    {"lift a limit", kSystemCalls, false},
    {"leave its rooms", kSystemCalls, false},
    {"make a ring", kSystemCalls, false},
};

class Walls : public ::testing::Test {
  protected:
    // The exit status; kRefused where the kernel ended it for what it tried.
    int Try(const char* attempt, std::uint32_t walls) const {
        std::string program = PICTOREL_WALL_BREAKER;
        std::string bits = std::to_string(walls);
        std::string name = attempt;
        std::string file = folder_.Path("file");
        char* words[] = {program.data(), bits.data(), name.data(), file.data(), nullptr};
        pid_t process = -1;
        EXPECT_EQ(::posix_spawn(&process, program.c_str(), nullptr, nullptr, words, environ), 0);
        int status = 0;
        ::waitpid(process, &status, 0);
        if (WIFSIGNALED(status)) {
            const int signal = WTERMSIG(status);
            return signal == SIGKILL || signal == SIGXCPU || signal == SIGXFSZ ? kRefused : -signal;
        }
        return WEXITSTATUS(status);
    }

    // The walls that this machine can raise.
    std::uint32_t Standing() const {
        std::uint32_t standing = 0;
        for (const WallName& row : kWallNames) {
            if (Try("work", row.wall) != kNotAllStand) {
                standing |= row.wall;
            }
        }
        return standing;
    }

    const TemporaryFolder folder_;
};

TEST_F(Walls, LeaveADecoderItsWork) {
    EXPECT_EQ(Try("work", Standing()), kSucceeded);
}

TEST_F(Walls, RefuseEveryAttemptTogether) {
    const std::uint32_t standing = Standing();
    for (const Attempt& attempt : kAttempts) {
        if ((attempt.keptOutBy & standing) != 0) {
            EXPECT_EQ(Try(attempt.name, standing), kRefused) << attempt.name;
        }
    }
}

TEST_F(Walls, HoldEachAlone) {
    const std::uint32_t standing = Standing();
    for (const Attempt& attempt : kAttempts) {
        for (const WallName& row : kWallNames) {
            if ((attempt.keptOutBy & standing & row.wall) != 0) {
                EXPECT_EQ(Try(attempt.name, row.wall), kRefused)
                    << attempt.name << " against the wall of " << row.name;
            }
        }
    }
}

TEST_F(Walls, AttemptsSucceedWithoutThem) {
    for (const Attempt& attempt : kAttempts) {
        if (attempt.succeedsWithout) {
            EXPECT_EQ(Try(attempt.name, 0), kSucceeded) << attempt.name;
        }
    }
}

TEST_F(Walls, OfSystemCallsStandsHere) {
    EXPECT_NE(Standing() & kSystemCalls, 0U) << "every supported kernel has it";
}

} // namespace
} // namespace pictorel::decoder::test
