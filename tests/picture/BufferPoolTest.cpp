// The pool of picture buffers: what it hands out again, what it keeps at most, and what it does when memory
// is short.
#include "picture/BufferPool.h"
#include "picture/ImagingError.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <fstream>
#include <limits>
#include <thread>
#include <vector>

namespace pictorel {
namespace {

constexpr std::size_t kMiB = std::size_t{1} << 20;
constexpr std::size_t kMostKept = 256 * kMiB;

class BufferPool : public ::testing::Test {
  protected:
    void SetUp() override { TrimBufferPool(); }
    void TearDown() override { TrimBufferPool(); }
};

TEST_F(BufferPool, ABlockGivenBackIsTheNextOneOfItsSize) {
    auto block = TakeBuffer(4 * kMiB - 5);
    const std::uint8_t* const address = block.get();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(address) % (2 * kMiB), 0U);
    EXPECT_EQ(PooledBytes(), 0U) << "a block in use is not idle";

    auto sharing = block;
    block.reset();
    EXPECT_EQ(PooledBytes(), 0U) << "one owner is left";
    sharing.reset();
    EXPECT_EQ(PooledBytes(), 4 * kMiB);

    const auto otherSize = TakeBuffer(9 * kMiB);
    EXPECT_NE(otherSize.get(), address) << "too small for what was asked";
    const auto again = TakeBuffer(3 * kMiB + 1); // the same number of huge pages
    EXPECT_EQ(again.get(), address);
    const auto twice = TakeBuffer(4 * kMiB);
    EXPECT_NE(twice.get(), address) << "one block for two owners";
}

TEST_F(BufferPool, EveryByteAskedForIsThere) {
    for (const std::size_t bytes :
         {std::size_t{1}, std::size_t{64}, std::size_t{65}, kMiB - 1, kMiB, 2 * kMiB + 1}) {
        const auto block = TakeBuffer(bytes);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block.get()) % 64, 0U);
        block.get()[0] = 1; // the sanitizer watches
        block.get()[bytes - 1] = 1;
    }
}

TEST_F(BufferPool, SmallBlocksAreLeftToTheSystem) {
    TakeBuffer(kMiB / 2).reset();
    EXPECT_EQ(PooledBytes(), 0U);
}

TEST_F(BufferPool, KeepsTheNewestUpToItsCap) {
    const auto used = TakeBuffer(90 * kMiB);
    auto oldest = TakeBuffer(100 * kMiB);
    auto middle = TakeBuffer(110 * kMiB);
    auto newest = TakeBuffer(120 * kMiB);
    const std::uint8_t* const newestAddress = newest.get();
    oldest.reset();
    middle.reset();
    newest.reset();
    EXPECT_EQ(PooledBytes(), 230 * kMiB);
    EXPECT_EQ(TakeBuffer(120 * kMiB).get(), newestAddress);

    TakeBuffer(kMostKept + 1).reset(); // more than the pool may hold at all
    EXPECT_EQ(PooledBytes(), 230 * kMiB) << "one that is too large does not push the others out";
}

TEST_F(BufferPool, KeepsWhatThePictureInUseJustifies) {
    const auto small = TakeBuffer(4 * kMiB);
    auto huge = TakeBuffer(2 * kMostKept);
    TakeBuffer(2 * kMostKept).reset();
    EXPECT_EQ(PooledBytes(), 2 * kMostKept);
    huge.reset(); // the huge picture is closed
    EXPECT_EQ(PooledBytes(), 0U);
    for (std::size_t i = 1; i < 100; ++i) { // small ones of many sizes
        TakeBuffer(2 * i % 20 * kMiB + kMiB).reset();
        EXPECT_LE(PooledBytes(), 32 * kMiB);
    }
    EXPECT_GT(PooledBytes(), 0U);
}

TEST_F(BufferPool, KeepsOneMoreOfAHugePicture) {
    auto picture = TakeBuffer(2 * kMostKept);
    const auto result = TakeBuffer(2 * kMostKept);
    const std::uint8_t* const address = picture.get();
    picture.reset();
    EXPECT_EQ(TakeBuffer(2 * kMostKept).get(), address) << "the next result takes the place of the source";
    TakeBuffer(3 * kMostKept).reset();
    EXPECT_EQ(PooledBytes(), 2 * kMostKept) << "no more than is in use";
}

TEST_F(BufferPool, TrimmingFreesWhatNobodyUses) {
    const auto used = TakeBuffer(8 * kMiB);
    TakeBuffer(16 * kMiB).reset();
    TrimBufferPool();
    EXPECT_EQ(PooledBytes(), 0U);
    used.get()[8 * kMiB - 1] = 1; // the sanitizer watches
}

TEST_F(BufferPool, ServesSeveralThreads) {
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([number] {
            for (int round = 0; round < 200; ++round) {
                const auto block = TakeBuffer(2 * kMiB);
                const auto mark = static_cast<std::uint8_t>(number);
                block.get()[0] = mark;
                std::this_thread::yield();
                ASSERT_EQ(block.get()[0], mark) << "two owners at once";
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_LE(PooledBytes(), 8 * kMiB);
}

TEST_F(BufferPool, AsksForMoreThanThereIsWithAClearError) {
#ifdef PICTOREL_SANITIZED
    GTEST_SKIP() << "the sanitizer ends the program instead";
#endif
    try {
        TakeBuffer(std::numeric_limits<std::size_t>::max() / 4);
        FAIL();
    } catch (const ImagingError& error) {
        EXPECT_EQ(error.Kind(), ImagingFailure::OutOfMemory);
    }
}

// Bounds the address space of this process for the life of the object.
class AddressSpaceLimit {
  public:
    explicit AddressSpaceLimit(std::size_t moreThanNow) {
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        ::getrlimit(RLIMIT_AS, &before_);
        rlimit limit = before_;
        limit.rlim_cur = pages * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)) + moreThanNow;
        ::setrlimit(RLIMIT_AS, &limit);
    }
    ~AddressSpaceLimit() { ::setrlimit(RLIMIT_AS, &before_); }
    AddressSpaceLimit(const AddressSpaceLimit&) = delete;
    AddressSpaceLimit& operator=(const AddressSpaceLimit&) = delete;

  private:
    rlimit before_{};
};

TEST_F(BufferPool, SaysWhatIsNeededAndWhatIsFree) {
#ifdef PICTOREL_UNDER_ASAN
    GTEST_SKIP() << "the sanitizer maps more than any limit";
#endif
    const AddressSpaceLimit limit(200 * kMiB);
    try {
        TakeBuffer(900 * kMiB);
        FAIL();
    } catch (const ImagingError& error) {
        EXPECT_EQ(error.Kind(), ImagingFailure::OutOfMemory);
        const std::string text = error.what();
        EXPECT_NE(text.find("needs 944 MB, and 2"), std::string::npos) << text;
    }
    EXPECT_NE(TakeBuffer(100 * kMiB).get(), nullptr);
}

TEST_F(BufferPool, IdleBlocksMakeRoomWhenMemoryIsShort) {
#ifdef PICTOREL_SANITIZED
    GTEST_SKIP() << "the sanitizer keeps freed memory";
#endif
    const auto used = TakeBuffer(100 * kMiB);
    TakeBuffer(200 * kMiB).reset();
    ASSERT_EQ(PooledBytes(), 200 * kMiB);
    const AddressSpaceLimit limit(130 * kMiB);
    const auto block = TakeBuffer(150 * kMiB);
    EXPECT_NE(block.get(), nullptr);
    EXPECT_EQ(PooledBytes(), 0U);
}

} // namespace
} // namespace pictorel
