// A small pool of recycled picture buffers: page faults of fresh memory cost several times any good kernel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace pictorel {

// A block of at least the asked size, 64-byte aligned (2 MiB-aligned and advised to huge pages when large).
// Content is undefined. When the last owner lets go, a large block goes back to the pool, which keeps three
// times the largest block in use, within 32 and 256 MiB, or as much as that block where it is larger, and
// frees the rest: small pictures do not keep what large ones left. Throws ImagingError(OutOfMemory), for
// large blocks before the system has to end programs. Safe to use from several threads.
std::shared_ptr<std::uint8_t> TakeBuffer(std::size_t bytes);

// Where the pixels of pictures lie: a block as TakeBuffer gives one, 64-byte aligned at least, that outlives
// its owners. Called from several threads.
using PictureBufferSource = std::function<std::shared_ptr<std::uint8_t>(std::size_t bytes)>;

// Has the pixels of every picture from now on come from `source`: for a program that decodes into memory
// which it shares with another. Called once, before there are pictures.
void SetPictureBufferSource(PictureBufferSource source);

// A block for the pixels of a picture: TakeBuffer's where no other source was set.
std::shared_ptr<std::uint8_t> TakePictureBuffer(std::size_t bytes);

// What there is for pictures, and how much of it each takes.
struct PictureRoom {
    std::int64_t bytes = 0;
    double takenPerByte = 1; // of pixels
};

// For a program that cannot ask the system: what it was told. Called once, before there are pictures.
void SetPictureRoom(PictureRoom room);

// The room for a picture of so many bytes: what was set, or else what the machine has free. Nothing where the
// picture is too small to ask for.
std::optional<PictureRoom> RoomForPicture(std::size_t bytes);

// Frees every block that nobody uses; called when a much smaller picture replaces a large one.
void TrimBufferPool() noexcept;

// Bytes that the pool holds and nobody uses.
std::size_t PooledBytes() noexcept;

} // namespace pictorel
