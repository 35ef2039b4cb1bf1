// The memory that the editor gives for one picture: rows are decoded straight into it.
#pragma once

#include "programs/decoder/DecoderMessages.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <thread>

namespace pictorel::decoder {

// Has pages made for a stretch of memory, from its beginning on, on another processor while the first rows
// are decoded: where the system has no large pages for shared memory, making small ones takes as long as a
// quarter of the decoding.
class PageMaker {
  public:
    ~PageMaker() { Stop(); }
    void Start(std::uint8_t* address, std::size_t bytes);
    void Stop();

  private:
    std::atomic<bool> isStopped_ = false;
    std::thread thread_;
};

class SharedMemory {
  public:
    // Maps the memory behind the descriptor, which stays open no longer than that. Throws
    // ImagingError(OutOfMemory).
    SharedMemory(int descriptor, std::int64_t bytes);
    ~SharedMemory() = default; // the memory stays mapped until the program ends, which is soon
    SharedMemory(const SharedMemory&) = delete;
    SharedMemory& operator=(const SharedMemory&) = delete;

    // A block for the pixels of a large picture, from ordinary memory where it is small or no room is left.
    // What is let go of costs no memory any longer. Safe to use from several threads.
    std::shared_ptr<std::uint8_t> TakePixels(std::size_t bytes);

    // Where the bytes lie if they are in here already; otherwise they are copied, to such a border. Throws
    // ImagingError(OutOfMemory).
    Part Place(std::span<const std::uint8_t> bytes, std::size_t alignment);

  private:
    std::uint8_t* Take(std::size_t bytes, std::size_t alignment) noexcept; // null where there is no room
    void GiveBack(std::uint8_t* address, std::size_t bytes) noexcept;

    std::mutex mutex_;
    std::uint8_t* begin_ = nullptr;
    std::size_t size_ = 0;
    std::size_t used_ = 0;
    const std::uint8_t* inTheMaking_ = nullptr; // the block that pages are made for
    PageMaker pages_;
};

} // namespace pictorel::decoder
