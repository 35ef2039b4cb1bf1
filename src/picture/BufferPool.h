// A small pool of recycled picture buffers: page faults of fresh memory cost several times any good kernel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace pictorel {

// A block of at least the asked size, 64-byte aligned (2 MiB-aligned and advised to huge pages when large).
// Content is undefined. When the last owner lets go, a large block goes back to the pool, which keeps at most
// 256 MiB, or as much as the largest block in use, and frees the rest: there is room for the next result of a
// huge picture too. Throws ImagingError(OutOfMemory). Safe to use from several threads.
std::shared_ptr<std::uint8_t> TakeBuffer(std::size_t bytes);

// Where the pixels of pictures lie: a block as TakeBuffer gives one, 64-byte aligned at least, that outlives
// its owners. Called from several threads.
using PictureBufferSource = std::function<std::shared_ptr<std::uint8_t>(std::size_t bytes)>;

// Has the pixels of every picture from now on come from `source`: for a program that decodes into memory
// which it shares with another. Called once, before there are pictures.
void SetPictureBufferSource(PictureBufferSource source);

// A block for the pixels of a picture: TakeBuffer's where no other source was set.
std::shared_ptr<std::uint8_t> TakePictureBuffer(std::size_t bytes);

// Frees every block that nobody uses; called when a much smaller picture replaces a large one.
void TrimBufferPool() noexcept;

// Bytes that the pool holds and nobody uses.
std::size_t PooledBytes() noexcept;

} // namespace pictorel
