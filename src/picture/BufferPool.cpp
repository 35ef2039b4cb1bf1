// A small pool of recycled picture buffers, see BufferPool.h.
#include "picture/BufferPool.h"

#include "picture/FreeMemory.h"
#include "picture/ImagingError.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace pictorel {
namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kSmallBlock = std::size_t{1} << 20; // below this the system's allocator is as fast
constexpr std::size_t kAlwaysKept = std::size_t{32} << 20;
constexpr std::size_t kMostKept = std::size_t{256} << 20;
constexpr std::size_t kKeptPerBlock = 3;                       // as an operation of several steps takes
constexpr std::size_t kWorthAsking = std::size_t{64} << 20;    // the system, which takes microseconds
constexpr std::int64_t kLeftToOthers = std::int64_t{64} << 20; // and to what is no picture

struct Block {
    std::uint8_t* address;
    std::size_t bytes;
};

std::size_t RoundUp(std::size_t bytes, std::size_t unit) {
    return (bytes + unit - 1) / unit * unit;
}

// Taking memory that is not there makes the system end programs, so a large block is asked for first.
void AskForRoom(std::size_t bytes) {
    if (bytes < kWorthAsking) {
        return;
    }
    const auto needed = static_cast<std::int64_t>(bytes) + kLeftToOthers;
    if (FreeMemory() < needed) {
        TrimBufferPool();
    }
    if (const std::int64_t free = FreeMemory(); free < needed) {
        throw ImagingError(ImagingFailure::OutOfMemory,
                           "There is not enough memory for this picture: it needs " +
                               MemoryText(static_cast<std::int64_t>(bytes)) + ", and " + MemoryText(free) +
                               " are free.");
    }
}

std::uint8_t* Allocate(std::size_t bytes, std::size_t alignment) {
    AskForRoom(bytes);
    auto* address = static_cast<std::uint8_t*>(std::aligned_alloc(alignment, bytes));
    if (address == nullptr) {
        TrimBufferPool(); // what the pool keeps for later may be what is missing now
        address = static_cast<std::uint8_t*>(std::aligned_alloc(alignment, bytes));
    }
    if (address == nullptr) {
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory for this picture.");
    }
    return address;
}

// Left alone, the C library raises the size from which freed memory goes back to the system to the largest
// that it has seen, and from then on pictures lie between small things in a heap that hardly ever shrinks.
void ReturnLargeBlocksToTheSystem() {
#ifdef __GLIBC__
    mallopt(M_MMAP_THRESHOLD, static_cast<int>(kHugePage));
#endif
}

class Pool {
  public:
    // The pool outlives every buffer, those of static objects included: it is never destroyed.
    static Pool& Instance() {
        static Pool* const instance = [] {
            ReturnLargeBlocksToTheSystem();
            return new Pool;
        }();
        return *instance;
    }

    std::uint8_t* Take(std::size_t bytes) {
        {
            const std::lock_guard lock(mutex_);
            ++used_[bytes];
            const auto found =
                std::find_if(idle_.begin(), idle_.end(), [=](const Block& b) { return b.bytes == bytes; });
            if (found != idle_.end()) {
                std::uint8_t* const address = found->address;
                idle_.erase(found);
                idleBytes_ -= bytes;
                return address;
            }
        }
        try {
            std::uint8_t* const address = Allocate(bytes, kHugePage);
            madvise(address, bytes, MADV_HUGEPAGE);
            return address;
        } catch (const ImagingError&) {
            const std::lock_guard lock(mutex_);
            ForgetUsed(bytes);
            throw;
        }
    }

    void GiveBack(Block block) noexcept {
        const std::lock_guard lock(mutex_);
        ForgetUsed(block.bytes);
        const std::size_t most = MostIdle();
        if (block.bytes > most) {
            std::free(block.address);
            FreeOldestBeyond(most);
            return;
        }
        try {
            idle_.push_back(block);
        } catch (const std::bad_alloc&) {
            std::free(block.address);
            return;
        }
        idleBytes_ += block.bytes;
        FreeOldestBeyond(most);
    }

    void Trim() noexcept {
        const std::lock_guard lock(mutex_);
        FreeOldestBeyond(0);
    }

    std::size_t IdleBytes() noexcept {
        const std::lock_guard lock(mutex_);
        return idleBytes_;
    }

  private:
    // Several times the largest block in use, which is mostly the picture on the screen, but of large ones no
    // more than one.
    std::size_t MostIdle() const noexcept {
        const std::size_t largest = used_.empty() ? 0 : used_.rbegin()->first;
        return std::clamp(kKeptPerBlock * largest, kAlwaysKept, std::max(kMostKept, largest));
    }

    void ForgetUsed(std::size_t bytes) noexcept {
        const auto used = used_.find(bytes);
        if (--used->second == 0) {
            used_.erase(used);
        }
    }

    void FreeOldestBeyond(std::size_t bytes) noexcept {
        while (idleBytes_ > bytes) {
            std::free(idle_.front().address);
            idleBytes_ -= idle_.front().bytes;
            idle_.erase(idle_.begin());
        }
    }

    std::mutex mutex_;
    std::map<std::size_t, int> used_; // blocks by their bytes
    std::vector<Block> idle_;         // oldest first
    std::size_t idleBytes_ = 0;
};

// Never destroyed, as the pool.
PictureBufferSource& PictureSource() {
    static auto* const source = new PictureBufferSource(TakeBuffer);
    return *source;
}

std::optional<PictureRoom>& ToldRoom() {
    static auto* const room = new std::optional<PictureRoom>;
    return *room;
}

} // namespace

void SetPictureRoom(PictureRoom room) {
    ToldRoom() = room;
}

std::optional<PictureRoom> RoomForPicture(std::size_t bytes) {
    if (bytes < kWorthAsking) {
        return std::nullopt;
    }
    return ToldRoom() ? *ToldRoom() : PictureRoom{FreeMemory() + static_cast<std::int64_t>(PooledBytes()), 1};
}

void SetPictureBufferSource(PictureBufferSource source) {
    PictureSource() = std::move(source);
}

std::shared_ptr<std::uint8_t> TakePictureBuffer(std::size_t bytes) {
    return PictureSource()(bytes);
}

std::shared_ptr<std::uint8_t> TakeBuffer(std::size_t bytes) {
    if (bytes < kSmallBlock) {
        std::uint8_t* const address = Allocate(RoundUp(std::max(bytes, kCacheLine), kCacheLine), kCacheLine);
        return {address, [](std::uint8_t* p) { std::free(p); }};
    }
    const Block block{nullptr, RoundUp(bytes, kHugePage)};
    std::uint8_t* const address = Pool::Instance().Take(block.bytes);
    return {address, [size = block.bytes](std::uint8_t* p) { Pool::Instance().GiveBack({p, size}); }};
}

void TrimBufferPool() noexcept {
    Pool::Instance().Trim();
}

std::size_t PooledBytes() noexcept {
    return Pool::Instance().IdleBytes();
}

} // namespace pictorel
