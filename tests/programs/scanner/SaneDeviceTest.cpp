// Scanning from the library's virtual device: its modes, its manners, and every fault that it can raise.
#include "programs/scanner/SaneDevice.h"
#include "programs/scanner/TestScanner.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

// The library's virtual device keeps some of its buffers when a scan is broken off. It is unloaded before
// leaks are looked for, so they cannot be told from others by their module.
extern "C" const char* __asan_default_options() { // NOLINT: the sanitizer's own name
    return "detect_leaks=0";
}

namespace pictorel::scanner {
namespace {

PixelArray Scan(const ScanWishes& wishes = {}, const ScanProgress& progress = {}) {
    const SaneSession session;
    const auto sources = session.Sources();
    EXPECT_FALSE(sources.empty()) << "the package with the library's scanner for tests is not installed";
    return sources.empty() ? PixelArray() : Scanner(sources.front()).ScanPage(wishes, progress);
}

int LargestDifference(const PixelArray& a, const PixelArray& b) {
    int largest = a.Width() == b.Width() ? 0 : 256;
    for (int y = 0; largest < 256 && y < std::min(a.Height(), b.Height()); ++y) {
        for (std::size_t i = 0; i < a.RowBytes(); ++i) {
            largest = std::max(largest, std::abs(a.Row(y)[i] - b.Row(y)[i]));
        }
    }
    return largest;
}

bool IsColoured(const PixelArray& picture) {
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) {
            const std::uint8_t* const p = picture.Row(y) + 4 * x;
            if (p[0] != p[2]) {
                return true;
            }
        }
    }
    return false;
}

TEST(SaneDevice, ScansTheWholeGlassInColourAt200) {
    const TestScanner scanner({"mode Gray", "depth 16", "resolution 50.0"});
    const PixelArray page = Scan();
    EXPECT_EQ(page.Width(), kTestPageSide);
    EXPECT_EQ(page.Height(), kTestPageSide);
    EXPECT_TRUE(IsColoured(page));
    EXPECT_EQ(page.Details().dotsPerInchX, 200);
    EXPECT_EQ(page.Details().dotsPerInchY, 200);
}

TEST(SaneDevice, TakesTheNearestResolutionThatIsOffered) {
    struct Case {
        const char* least;
        const char* most;
        const char* step;
        double expected;
    };
    for (const Case& c :
         {Case{"resolution_min 1.0", "resolution_max 150.0", "resolution_quant 1.0", 150},
          Case{"resolution_min 300.0", "resolution_max 1200.0", "resolution_quant 1.0", 300},
          Case{"resolution_min 50.0", "resolution_max 1200.0", "resolution_quant 70.0", 190}}) {
        const TestScanner scanner({c.least, c.most, c.step, c.expected == 300 ? "resolution 300.0" : ""});
        EXPECT_EQ(Scan().Details().dotsPerInchX, c.expected);
    }
}

struct MannerCase {
    const char* first;
    const char* second;
    const char* third = "";
};

TEST(SaneDevice, EveryMannerOfSendingGivesTheSamePage) {
    const PixelArray plain = [] {
        const TestScanner scanner;
        return Scan();
    }();
    for (const MannerCase& c :
         {MannerCase{"three-pass true", "three-pass-order RGB"},
          MannerCase{"three-pass true", "three-pass-order BRG"},
          MannerCase{"read-limit true", "read-limit-size 1"},
          MannerCase{"read-limit true", "read-limit-size 7", "three-pass true"},
          MannerCase{"read-delay true", "read-delay-duration 20000"}, MannerCase{"fuzzy-parameters true", ""},
          MannerCase{"non-blocking true", "select-fd true"}}) {
        const TestScanner scanner({c.first, c.second, c.third});
        const PixelArray page = Scan();
        EXPECT_EQ(page.Height(), plain.Height()) << c.first << ", " << c.second;
        EXPECT_EQ(LargestDifference(page, plain), 0) << c.first << ", " << c.second;
    }
}

TEST(SaneDevice, PaddedLinesAndUnknownLengthsArePages) {
    {
        const TestScanner scanner({"ppl-loss 5"});
        const PixelArray page = Scan();
        EXPECT_EQ(page.Width(), kTestPageSide - 5);
        EXPECT_EQ(page.Height(), kTestPageSide);
    }
    const TestScanner scanner({"hand-scanner true"});
    const PixelArray page = Scan();
    EXPECT_GT(page.Width(), 0);
    EXPECT_GT(page.Height(), 0);
}

TEST(SaneDevice, OtherDepthsAndModesShowTheSamePicture) {
    const TestScanner scanner({"test-picture \"Grid\""}); // the one that looks the same in each of them
    const PixelArray page = Scan();
    EXPECT_LE(LargestDifference(Scan({"Gray", 1, 200}), page), 0);
    EXPECT_LE(LargestDifference(Scan({"Color", 16, 200}), page), 1);
    EXPECT_FALSE(IsColoured(Scan({"Gray", 8, 200})));
    EXPECT_LE(LargestDifference(Scan({"Gray", 16, 200}), Scan({"Gray", 8, 200})), 1);
}

TEST(SaneDevice, WhiteIsWhiteInEveryMode) {
    for (const char* const colour : {"white", "black"}) {
        const std::string setting = std::string("test-picture \"Solid ") + colour + '"';
        const TestScanner scanner({setting.c_str()});
        const int expected = colour == std::string("white") ? 255 : 0;
        for (const ScanWishes& wishes : {ScanWishes{"Gray", 1, 200}, ScanWishes{"Gray", 8, 200},
                                         ScanWishes{"Color", 1, 200}, ScanWishes{"Color", 16, 200}}) {
            const PixelArray page = Scan(wishes);
            EXPECT_EQ(page.Row(page.Height() / 2)[4 * (page.Width() / 2)], expected)
                << colour << " in " << wishes.mode << " of " << wishes.depth;
        }
    }
}

// What a scan in a process of its own says of its fault; that process ends without parking the scanner, since
// the virtual device now and then hangs when it is cancelled before its first byte.
std::string FaultOfScan() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);
    const pid_t scan = ::fork();
    if (scan == 0) {
        std::string said = "a page";
        try {
            const SaneSession session;
            const Scanner device(session.Sources().front());
            try {
                device.ScanPage({}, {});
            } catch (const std::exception& error) {
                said = error.what();
            }
            const bool written = ::write(ends[1], said.data(), said.size()) > 0;
            ::_exit(written ? 0 : 1);
        } catch (const std::exception& error) {
            const bool written = ::write(ends[1], error.what(), std::strlen(error.what())) > 0;
            ::_exit(written ? 0 : 1);
        }
    }
    ::close(ends[1]);
    std::array<char, 256> text{};
    const ssize_t length = ::read(ends[0], text.data(), text.size());
    ::close(ends[0]);
    ::waitpid(scan, nullptr, 0);
    return {text.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
}

struct FaultCase {
    const char* status;
    const char* saying;
};

TEST(SaneDevice, FaultsAreSaidInWords) {
    for (const FaultCase& c :
         {FaultCase{"SANE_STATUS_NO_DOCS", "no paper"}, FaultCase{"SANE_STATUS_JAMMED", "jammed"},
          FaultCase{"SANE_STATUS_COVER_OPEN", "cover"}, FaultCase{"SANE_STATUS_IO_ERROR", "connection"},
          FaultCase{"SANE_STATUS_DEVICE_BUSY", "busy"}, FaultCase{"SANE_STATUS_NO_MEM", "memory"},
          FaultCase{"SANE_STATUS_CANCELLED", "cancelled"}, FaultCase{"SANE_STATUS_ACCESS_DENIED", "may not"},
          FaultCase{"SANE_STATUS_INVAL", "opened"}, FaultCase{"SANE_STATUS_UNSUPPORTED", "support"},
          FaultCase{"SANE_STATUS_EOF", "empty page"}}) {
        const std::string setting = std::string("read-status-code \"") + c.status + '"';
        const TestScanner scanner({setting.c_str()});
        const std::string said = FaultOfScan();
        EXPECT_NE(said.find(c.saying), std::string::npos) << c.status << ": " << said;
    }
}

TEST(SaneDevice, AScannerThatIsGoneIsAnError) {
    const TestScanner scanner;
    const SaneSession session;
    EXPECT_THROW(Scanner("test:99"), ScanError);
}

TEST(SaneDevice, StopsWhenAskedAndTellsHowFarItIs) {
    const TestScanner scanner({"read-limit true", "read-limit-size 1000"});
    std::vector<int> percents;
    ScanProgress progress;
    progress.report = [&](int percent) { percents.push_back(percent); };
    progress.isStopped = [&] { return !percents.empty() && percents.back() >= 30; };
    EXPECT_THROW(Scan({}, progress), ScanError);
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_LT(percents.back(), 50);
    progress.isStopped = [] { return false; };
    percents.clear();
    Scan({}, progress);
    EXPECT_EQ(percents.back(), 100);
}

TEST(SaneDevice, TheFavouriteStandsFirst) {
    const TestScanner scanner({}, 3);
    const SaneSession session;
    EXPECT_EQ(session.Sources(), (std::vector<std::string>{"test:0", "test:1", "test:2"}));
    ::setenv("SANE_DEFAULT_DEVICE", "test:2", 1);
    EXPECT_EQ(session.Sources(), (std::vector<std::string>{"test:2", "test:0", "test:1"}));
    ::unsetenv("SANE_DEFAULT_DEVICE");
}

TEST(SaneDevice, NoDriverIsNoSource) {
    const TestScanner scanner({}, 1, "# none");
    EXPECT_TRUE(SaneSession().Sources().empty());
}

} // namespace
} // namespace pictorel::scanner
