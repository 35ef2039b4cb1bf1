// Taking a picture out of the decoder's memory, see ReceivedPicture.h.
#include "editor/decoding/ReceivedPicture.h"

#include "picture/ForEachBand.h"
#include "picture/ImagingError.h"

#include <fcntl.h>
#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <vector>

namespace pictorel {
namespace {

constexpr std::int64_t kSmallPage = 4096;
constexpr std::int64_t kSmallPicture = std::int64_t{1} << 20; // copied rather than mapped

[[noreturn]] void ThrowRefused() {
    throw ImagingError(ImagingFailure::UnsupportedFormat, "The file could not be decoded.");
}

[[noreturn]] void ThrowOutOfMemory() {
    throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory for this picture.");
}

std::int64_t RowsBytes(const decoder::Answer& answer) {
    return PixelArray::StrideOf(answer.width) * static_cast<std::int64_t>(answer.height);
}

bool IsResolution(double perInch) {
    return std::isfinite(perInch) && perInch >= 0;
}

void ReadAll(int descriptor, std::uint8_t* target, const decoder::Part& part) {
    std::int64_t done = 0;
    while (done < part.bytes) {
        const ssize_t read = ::pread(descriptor, target + done, static_cast<std::size_t>(part.bytes - done),
                                     part.offset + done);
        if (read <= 0 && errno != EINTR) {
            ThrowRefused();
        }
        done += std::max<ssize_t>(read, 0);
    }
}

// A view of the memory at a border between large pages, since only there they can be used. What is written to
// it stays with this process.
std::shared_ptr<std::uint8_t> Map(int descriptor, const decoder::Part& part) {
    const auto border = static_cast<std::size_t>(decoder::kPixelAlignment);
    const auto bytes = static_cast<std::size_t>(part.bytes);
    void* const reserved =
        ::mmap(nullptr, bytes + border, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (reserved == MAP_FAILED) {
        ThrowOutOfMemory();
    }
    const auto first = reinterpret_cast<std::uintptr_t>(reserved);
    auto* const aligned =
        static_cast<std::uint8_t*>(reserved) + ((first + border - 1) / border * border - first);
    std::shared_ptr<std::uint8_t> view(
        aligned, [reserved, all = bytes + border](std::uint8_t*) { ::munmap(reserved, all); });
    if (::mmap(aligned, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_FIXED | MAP_NORESERVE, descriptor,
               part.offset) == MAP_FAILED) {
        ThrowOutOfMemory();
    }
    ::madvise(aligned, bytes, MADV_HUGEPAGE);
    // All at once, and by all cores, costs less than page by page. Only advice, to kernels that take it.
    ForEachBand(static_cast<int>((bytes + border - 1) / border), border, [=](int firstPage, int endPage) {
        const std::size_t begin = static_cast<std::size_t>(firstPage) * border;
        const std::size_t end = std::min(static_cast<std::size_t>(endPage) * border, bytes);
        ::madvise(aligned + begin, end - begin, MADV_POPULATE_READ);
    });
    return view;
}

} // namespace

AnswerMemory::AnswerMemory(std::int64_t bytes)
    : descriptor_(::memfd_create("picture", MFD_CLOEXEC | MFD_ALLOW_SEALING)), bytes_(bytes) {
    if (!descriptor_.IsOpen() || ::ftruncate(descriptor_.Number(), bytes) != 0 ||
        ::fcntl(descriptor_.Number(), F_ADD_SEALS, F_SEAL_GROW) != 0) {
        ThrowOutOfMemory();
    }
}

bool AnswerMemory::Holds(const decoder::Part& part) const noexcept {
    return part.offset >= 0 && part.bytes >= 0 && part.offset <= bytes_ && part.bytes <= bytes_ - part.offset;
}

PixelArray AnswerMemory::Take(const decoder::Answer& answer) {
    CheckPictureSize(answer.width, answer.height);
    const bool holdsAll =
        Holds(answer.pixels) && Holds(answer.exif) && Holds(answer.icc) && Holds(answer.xmp);
    if (!holdsAll || answer.pixels.bytes != RowsBytes(answer) ||
        answer.pixels.offset % decoder::kPixelAlignment != 0 || !IsResolution(answer.dotsPerInchX) ||
        !IsResolution(answer.dotsPerInchY) || !(answer.partShown >= 0 && answer.partShown <= 1)) {
        ThrowRefused();
    }
    Seal(answer);
    Metadata details;
    details.exif = Bytes(answer.exif);
    details.icc = Bytes(answer.icc);
    details.xmp = Bytes(answer.xmp);
    details.dotsPerInchX = answer.dotsPerInchX;
    details.dotsPerInchY = answer.dotsPerInchY;
    PixelArray picture = Rows(answer);
    picture.SetHasAlpha(answer.hasAlpha != 0);
    picture.SetDetails(std::move(details));
    picture.SetPartShown(answer.partShown);
    return picture;
}

// What lies outside the answer goes, and the rest stays as it is for good.
void AnswerMemory::Seal(const decoder::Answer& answer) const {
    std::int64_t end = 0;
    for (const decoder::Part& part : {answer.pixels, answer.exif, answer.icc, answer.xmp}) {
        end = std::max(end, part.offset + part.bytes);
    }
    end = (end + kSmallPage - 1) / kSmallPage * kSmallPage; // a view of whole pages
    if (::ftruncate(descriptor_.Number(), std::min(end, bytes_)) != 0) {
        ThrowRefused();
    }
    if (::fcntl(descriptor_.Number(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_FUTURE_WRITE | F_SEAL_SEAL) != 0) {
        ThrowRefused();
    }
}

std::vector<std::uint8_t> AnswerMemory::Bytes(const decoder::Part& part) const {
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(part.bytes));
    ReadAll(descriptor_.Number(), bytes.data(), part);
    return bytes;
}

PixelArray AnswerMemory::Rows(const decoder::Answer& answer) const {
    if (answer.pixels.bytes >= kSmallPicture) {
        return PixelArray(answer.width, answer.height, Map(descriptor_.Number(), answer.pixels));
    }
    PixelArray picture(answer.width, answer.height);
    ReadAll(descriptor_.Number(), picture.WritableRows(), answer.pixels);
    return picture;
}

} // namespace pictorel
