// The memory that the editor gives for one picture, see SharedMemory.h.
#include "programs/decoder/SharedMemory.h"

#include "picture/BufferPool.h"
#include "picture/ImagingError.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <system_error>

namespace pictorel::decoder {
namespace {

constexpr std::size_t kLargePage = static_cast<std::size_t>(kPixelAlignment);
constexpr std::size_t kSmallPicture = std::size_t{1} << 20; // copied at the end sooner than pages are mapped
constexpr std::size_t kWorthAThread = 4 * kLargePage;

std::size_t RoundUp(std::size_t bytes, std::size_t unit) {
    return (bytes + unit - 1) / unit * unit;
}

[[noreturn]] void ThrowOutOfMemory() {
    throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory for this picture.");
}

// Addresses at a border between large pages, since only such a stretch can be made of them.
std::uint8_t* MapAligned(int descriptor, std::size_t bytes) {
    void* const reserved =
        ::mmap(nullptr, bytes + kLargePage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (reserved == MAP_FAILED) {
        return nullptr;
    }
    const auto first = reinterpret_cast<std::uintptr_t>(reserved);
    void* const aligned = static_cast<std::uint8_t*>(reserved) + (RoundUp(first, kLargePage) - first);
    void* const mapped =
        ::mmap(aligned, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_FIXED, descriptor, 0);
    return mapped == MAP_FAILED ? nullptr : static_cast<std::uint8_t*>(mapped);
}

} // namespace

void PageMaker::Start(std::uint8_t* address, std::size_t bytes) {
    Stop();
    isStopped_ = false;
    try {
        thread_ = std::thread([this, address, bytes] {
            // In steps, so that it can be stopped. Older kernels cannot, and pages come one by one.
            for (std::size_t done = 0; done < bytes && !isStopped_; done += kLargePage) {
                if (::madvise(address + done, kLargePage, MADV_POPULATE_WRITE) != 0) {
                    return;
                }
            }
        });
    } catch (const std::system_error&) {
        // Pages come one by one.
    }
}

void PageMaker::Stop() {
    isStopped_ = true;
    if (thread_.joinable()) {
        thread_.join();
    }
}

SharedMemory::SharedMemory(int descriptor, std::int64_t bytes)
    : begin_(MapAligned(descriptor, static_cast<std::size_t>(bytes))),
      size_(static_cast<std::size_t>(bytes)) {
    ::close(descriptor);
    if (begin_ == nullptr) {
        ThrowOutOfMemory();
    }
    ::madvise(begin_, size_, MADV_HUGEPAGE);
}

std::uint8_t* SharedMemory::Take(std::size_t bytes, std::size_t alignment) noexcept {
    const std::lock_guard lock(mutex_);
    const std::size_t offset = RoundUp(used_, alignment);
    if (offset > size_ || bytes > size_ - offset) {
        return nullptr;
    }
    used_ = offset + bytes;
    return begin_ + offset;
}

void SharedMemory::GiveBack(std::uint8_t* address, std::size_t bytes) noexcept {
    const std::lock_guard lock(mutex_);
    if (address == inTheMaking_) {
        pages_.Stop();
    }
    if (address + bytes == begin_ + used_) {
        used_ -= bytes; // the next one takes these pages as they are
    } else {
        ::madvise(address, bytes, MADV_REMOVE);
    }
}

std::shared_ptr<std::uint8_t> SharedMemory::TakePixels(std::size_t bytes) {
    const std::size_t room = RoundUp(bytes, kLargePage);
    std::uint8_t* const address = bytes < kSmallPicture ? nullptr : Take(room, kLargePage);
    if (address == nullptr) {
        return TakeBuffer(bytes);
    }
    if (room >= kWorthAThread) {
        const std::lock_guard lock(mutex_);
        inTheMaking_ = address;
        pages_.Start(address, room);
    }
    return {address, [this, room](std::uint8_t* p) { GiveBack(p, room); }};
}

Part SharedMemory::Place(std::span<const std::uint8_t> bytes, std::size_t alignment) {
    const std::uint8_t* address = bytes.data();
    if (address < begin_ || address >= begin_ + size_) {
        std::uint8_t* const copy = Take(bytes.size(), alignment);
        if (copy == nullptr) {
            ThrowOutOfMemory();
        }
        if (!bytes.empty()) {
            std::memcpy(copy, bytes.data(), bytes.size());
        }
        address = copy;
    }
    return {address - begin_, static_cast<std::int64_t>(bytes.size())};
}

} // namespace pictorel::decoder
