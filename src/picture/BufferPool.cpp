// A small pool of recycled picture buffers, see BufferPool.h.
#include "picture/BufferPool.h"

#include "picture/ImagingError.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

namespace pictorel {
namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::size_t kCacheLine = 64;
constexpr std::size_t kSmallBlock = std::size_t{1} << 20; // below this the system's allocator is as fast
constexpr std::size_t kPooledBytes = std::size_t{256} << 20;

struct Block {
    std::uint8_t* address;
    std::size_t bytes;
};

std::size_t RoundUp(std::size_t bytes, std::size_t unit) {
    return (bytes + unit - 1) / unit * unit;
}

std::uint8_t* Allocate(std::size_t bytes, std::size_t alignment) {
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

class Pool {
  public:
    // The pool outlives every buffer, those of static objects included: it is never destroyed.
    static Pool& Instance() {
        static Pool* const instance = new Pool;
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
        const std::size_t most = std::max(kPooledBytes, used_.empty() ? 0 : used_.rbegin()->first);
        if (block.bytes > most) {
            std::free(block.address);
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

} // namespace

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
