// Converts a picture file into a JPEG of another size, see FileConverter.h.
#include "editor/FileConverter.h"

#include "editor/FinerCopies.h"
#include "picture/ImagingError.h"

#include <utility>

namespace pictorel {
namespace {

constexpr int kQuality = 100;

} // namespace

FileConverter::FileConverter(ImageCodec& codec, std::shared_ptr<const WorkingFileMemory> memory,
                             std::shared_ptr<SharedPyramids> pyramids)
    : codec_(codec), memory_(std::move(memory)), pyramids_(std::move(pyramids)) {}

void FileConverter::SetOutputSize(std::int32_t width, std::int32_t height) {
    width_ = width;
    height_ = height;
}

void FileConverter::Convert(const std::string& source, const std::string& target) {
    if (width_ < 1 || height_ < 1) {
        throw ImagingError(ImagingFailure::InvalidValue, "No size is set for the converted picture.");
    }
    PixelArray picture = memory_->PixelsOf(source);
    if (picture.IsEmpty() && !codec_.Read(source, picture)) {
        throw ImagingError(ImagingFailure::UnsupportedFormat, "The file " + source + " is no picture.");
    }
    const auto finer = std::make_shared<const FinerCopies>(pyramids_->Of(picture));
    PixelArray reduced = finer->Copy(width_, height_);
    reduced.SetFiner(finer);
    codec_.SetQuality(kQuality);
    codec_.Write(reduced, target, "JPG");
}

} // namespace pictorel
