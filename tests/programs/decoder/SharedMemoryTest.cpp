// The memory for one picture: where blocks lie in it, what it gives back, and what it does when it is full.
#include "picture/ImagingError.h"
#include "programs/decoder/SharedMemory.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <vector>

namespace pictorel::decoder {
namespace {

constexpr std::int64_t kMiB = std::int64_t{1} << 20;

// Shared memory with a descriptor of its own, to look at it from outside.
class Outside {
  public:
    explicit Outside(std::int64_t bytes) : descriptor_(::memfd_create("test", 0)) {
        EXPECT_EQ(::ftruncate(descriptor_, bytes), 0);
    }
    ~Outside() { ::close(descriptor_); }
    Outside(const Outside&) = delete;
    Outside& operator=(const Outside&) = delete;

    int Given() const { return ::dup(descriptor_); }
    std::int64_t TakenBytes() const {
        struct stat status {};
        ::fstat(descriptor_, &status);
        return status.st_blocks * 512;
    }
    std::string Read(const Part& part) const {
        std::string bytes(static_cast<std::size_t>(part.bytes), '\0');
        EXPECT_EQ(::pread(descriptor_, bytes.data(), bytes.size(), part.offset), part.bytes);
        return bytes;
    }

  private:
    int descriptor_;
};

std::span<const std::uint8_t> BytesOf(const char* text) {
    return {reinterpret_cast<const std::uint8_t*>(text), std::strlen(text)};
}

TEST(SharedMemory, PixelsLieInItAndOthersAreCopiedToTheirBorder) {
    const Outside outside(32 * kMiB);
    SharedMemory memory(outside.Given(), 32 * kMiB);
    const auto large = memory.TakePixels(3 * kMiB);
    const auto second = memory.TakePixels(3 * kMiB);
    std::memcpy(second.get(), "pixels", 6);
    const Part inPlace = memory.Place({second.get(), 6}, kPixelAlignment);
    EXPECT_EQ(inPlace.offset, 4 * kMiB);
    EXPECT_EQ(outside.Read(inPlace), "pixels");

    const Part detail = memory.Place(BytesOf("detail"), 64);
    EXPECT_EQ(outside.Read(detail), "detail");
    const auto small = memory.TakePixels(5); // from elsewhere
    std::memcpy(small.get(), "small", 5);
    const Part copied = memory.Place({small.get(), 5}, kPixelAlignment);
    EXPECT_EQ(copied.offset % kPixelAlignment, 0);
    EXPECT_EQ(outside.Read(copied), "small");
    EXPECT_EQ(outside.Read(detail), "detail");
    EXPECT_EQ(memory.Place({}, 64).bytes, 0);
}

TEST(SharedMemory, WhatIsLetGoOfCostsNothing) {
    const Outside outside(64 * kMiB);
    SharedMemory memory(outside.Given(), 64 * kMiB);
    auto first = memory.TakePixels(20 * kMiB);
    std::memset(first.get(), 1, 20 * kMiB);
    auto second = memory.TakePixels(20 * kMiB);
    std::memset(second.get(), 2, 20 * kMiB);
    EXPECT_GE(outside.TakenBytes(), 40 * kMiB);
    first.reset();
    EXPECT_LE(outside.TakenBytes(), 21 * kMiB);
    EXPECT_EQ(second.get()[20 * kMiB - 1], 2);

    const std::uint8_t* const address = second.get();
    second.reset(); // the last: its room is taken again
    EXPECT_EQ(memory.TakePixels(20 * kMiB).get(), address);
}

TEST(SharedMemory, IsFullWithAClearError) {
    const Outside outside(4 * kMiB);
    SharedMemory memory(outside.Given(), 4 * kMiB);
    const auto inIt = memory.TakePixels(4 * kMiB);
    const auto beside = memory.TakePixels(2 * kMiB); // ordinary memory
    ASSERT_NE(beside, nullptr);
    try {
        memory.Place({beside.get(), 2 * kMiB}, kPixelAlignment);
        FAIL();
    } catch (const ImagingError& error) {
        EXPECT_EQ(error.Kind(), ImagingFailure::OutOfMemory);
    }
}

} // namespace
} // namespace pictorel::decoder
