// A picture in memory, see PixelArray.h.
#include "picture/PixelArray.h"

#include "picture/BufferPool.h"
#include "picture/ForEachBand.h"
#include "picture/FreeMemory.h"
#include "picture/ImagingError.h"

#include <cstring>
#include <string>
#include <utility>

namespace pictorel {
namespace {

constexpr std::ptrdiff_t kRowAlignment = 64;

// Before memory is taken that the system would have to end programs for.
void CheckRoom(int width, int height, std::size_t bytes) {
    const auto room = RoomForPicture(bytes);
    const auto needed = room ? static_cast<std::int64_t>(static_cast<double>(bytes) * room->takenPerByte) : 0;
    if (room && needed > room->bytes) {
        throw ImagingError(ImagingFailure::OutOfMemory,
                           "There is not enough memory: " + std::to_string(width) + " x " +
                               std::to_string(height) + " pixels need " + MemoryText(needed) + ", and " +
                               MemoryText(room->bytes) + " are free.");
    }
}

} // namespace

void CheckPictureSize(std::int64_t width, std::int64_t height) {
    if (width < 1 || height < 1) {
        throw ImagingError(ImagingFailure::UnsupportedFormat, "The picture has no pixels.");
    }
    if (width > kMaximumSide || height > kMaximumSide || width * height > kMaximumPixels) {
        throw ImagingError(
            ImagingFailure::TooLarge,
            "A picture of " + std::to_string(width) + " x " + std::to_string(height) +
                " pixels is larger than this editor can open: " + std::to_string(kMaximumSide) +
                " pixels a side and a thousand million in all.");
    }
}

PixelArray::PixelArray(int width, int height) {
    CheckPictureSize(width, height);
    stride_ = StrideOf(width);
    const std::size_t bytes = static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height);
    CheckRoom(width, height, bytes);
    buffer_ = TakePictureBuffer(bytes);
    width_ = width;
    height_ = height;
}

PixelArray::PixelArray(int width, int height, std::shared_ptr<std::uint8_t> rows) {
    CheckPictureSize(width, height);
    stride_ = StrideOf(width);
    buffer_ = std::move(rows);
    width_ = width;
    height_ = height;
}

std::ptrdiff_t PixelArray::StrideOf(int width) noexcept {
    return (static_cast<std::ptrdiff_t>(width) * kComponents + kRowAlignment - 1) / kRowAlignment *
           kRowAlignment;
}

PixelArray PixelArray::Like(const PixelArray& source, int width, int height) {
    PixelArray result(width, height);
    result.details_ = source.details_;
    result.reduction_ = source.reduction_;
    result.hasAlpha_ = source.hasAlpha_;
    return result;
}

std::uint8_t* PixelArray::WritableRows() {
    if (buffer_ && buffer_.use_count() > 1) {
        PixelArray own = Like(*this);
        ForEachBand(height_, 2 * RowBytes(), [&](int first, int end) {
            std::memcpy(own.buffer_.get() + first * stride_, Row(first),
                        static_cast<std::size_t>(end - first) * static_cast<std::size_t>(stride_));
        });
        buffer_ = std::move(own.buffer_);
    }
    return buffer_.get();
}

const Metadata& PixelArray::Details() const noexcept {
    static const Metadata none;
    return details_ ? *details_ : none;
}

void PixelArray::SetDetails(Metadata details) {
    details_ = std::make_shared<const Metadata>(std::move(details));
}

} // namespace pictorel
