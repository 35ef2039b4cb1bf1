// Picture files of every format, see ImageCodec.h.
#include "editor/ImageCodec.h"

#include "editor/AtomicFile.h"
#include "picture/BufferPool.h"
#include "picture/ImagingError.h"
#include "picture/codecs/jpeg/JpegCodec.h"

#include <new>
#include <utility>

namespace pictorel {

ImageCodec::ImageCodec(IsWorkingFile isWorkingFile, std::shared_ptr<WorkingFileMemory> memory,
                       codecs::CodecTable formats)
    : isWorkingFile_(std::move(isWorkingFile)), memory_(std::move(memory)), formats_(std::move(formats)) {}

bool ImageCodec::Read(const std::string& fileName, PixelArray& picture) {
    picture = PixelArray();
    const auto bytes = ReadWholeFile(fileName);
    const codecs::Codec* const codec = bytes ? formats_.FindByContent(*bytes) : nullptr;
    if (codec == nullptr) {
        return false;
    }
    try {
        const bool working = isWorkingFile_(fileName);
        picture = codec->read(*bytes, {working});
        if (working) {
            memory_->Remember(fileName, picture);
        }
        return true;
    } catch (const ImagingError& error) {
        if (error.Kind() == ImagingFailure::OutOfMemory) {
            throw;
        }
        return false;
    } catch (const std::bad_alloc&) {
        TrimBufferPool();
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory for this picture.");
    }
}

void ImageCodec::Write(const PixelArray& picture, const std::string& fileName, std::string_view format) {
    const codecs::Codec* const codec = formats_.FindByExtension(format);
    if (codec == nullptr) {
        throw ImagingError(ImagingFailure::UnsupportedFormat,
                           "This editor cannot write the format " + std::string(format) + " yet.");
    }
    const bool working = isWorkingFile_(fileName);
    if (working && memory_->LinkAs(fileName, picture)) {
        return;
    }
    try {
        if (working && codec->write == codecs::WriteJpeg) {
            ReplaceFile(
                fileName, [&](const codecs::ByteSink& sink) { codecs::WriteWorkingJpeg(picture, sink); },
                Durability::Working);
        } else {
            ReplaceFile(fileName, codec->write(picture, {quality_, working}),
                        working ? Durability::Working : Durability::Lasting);
        }
    } catch (const std::bad_alloc&) {
        TrimBufferPool();
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to save this picture.");
    }
    if (working) {
        memory_->Remember(fileName, picture);
    }
}

} // namespace pictorel
