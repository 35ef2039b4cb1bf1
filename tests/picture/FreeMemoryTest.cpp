// Free memory as told by made files of the system.
#include "editor/TemporaryFolder.h"
#include "picture/FreeMemory.h"

#include <gtest/gtest.h>

#include <limits>

namespace pictorel::test {
namespace {

constexpr std::int64_t kUnbounded = std::numeric_limits<std::int64_t>::max();

TEST(FreeMemory, IsTheLeastOfWhatBoundsIt) {
    const TemporaryFolder folder;
    const auto told = [&] { return FreeMemoryAsToldIn(folder.Path("proc"), folder.Path("groups")); };
    EXPECT_EQ(told(), kUnbounded) << "nothing is told";
    folder.Make("proc/meminfo", "MemTotal: 9000 kB\nMemFree: 10 kB\nMemAvailable:    5000 kB\n");
    EXPECT_EQ(told(), 5000 * 1024);
    folder.Make("proc/self/cgroup", "1:name=systemd:/old\n0::/user/session\n");
    EXPECT_EQ(told(), 5000 * 1024) << "without groups";
    folder.Make("groups/user/session/memory.max", "max\n");
    folder.Make("groups/user/session/memory.current", "100\n");
    EXPECT_EQ(told(), 5000 * 1024);
    folder.Make("groups/user/memory.max", "4000000\n");
    folder.Make("groups/user/memory.current", "1500000\n");
    EXPECT_EQ(told(), 2500000) << "a group further up";
    folder.Make("groups/user/memory.stat", "anon 5\ninactive_file 300000\n");
    EXPECT_EQ(told(), 2800000);
    folder.Make("groups/user/session/memory.max", "1000\n");
    EXPECT_EQ(told(), 900);
    folder.Make("groups/user/session/memory.current", "2000\n");
    EXPECT_EQ(told(), 0);
    folder.Make("proc/self/cgroup", "0::/\n");
    EXPECT_EQ(told(), 5000 * 1024);
}

TEST(FreeMemory, IsSomethingOnThisMachine) {
    EXPECT_GT(FreeMemory(), std::int64_t{1} << 20);
    EXPECT_LT(FreeMemory(), kUnbounded);
}

TEST(FreeMemory, IsSpelledForPeople) {
    EXPECT_EQ(MemoryText(0), "0 MB");
    EXPECT_EQ(MemoryText(870'400'000), "870 MB");
    EXPECT_EQ(MemoryText(3'600'000'000), "3.6 GB");
}

} // namespace
} // namespace pictorel::test
