// Picture files of every format, see PictureFileCodec.h.
#include "imaging/objects/PictureFileCodec.h"

#include "imaging/BufferPool.h"
#include "imaging/ImagingError.h"
#include "imaging/codecs/Codec.h"
#include "imaging/objects/AtomicFile.h"

#include <new>
#include <utility>

namespace pictorel {

PictureFileCodec::PictureFileCodec(IsWorkingFile isWorkingFile, std::shared_ptr<WorkingFileMemory> memory)
    : isWorkingFile_(std::move(isWorkingFile)), memory_(std::move(memory)) {}

bool PictureFileCodec::Read(const std::string& fileName, PixelArray& picture) {
    picture = PixelArray();
    const auto bytes = ReadWholeFile(fileName);
    const codecs::Codec* const codec = bytes ? codecs::FindCodecByContent(*bytes) : nullptr;
    if (codec == nullptr) {
        return false;
    }
    try {
        const bool working = isWorkingFile_(fileName);
        picture = codec->read(*bytes, {working});
        if (working) {
            picture.SetFiner(memory_->FinerOf(fileName));
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

void PictureFileCodec::Write(const PixelArray& picture, const std::string& fileName,
                             std::string_view format) {
    const codecs::Codec* const codec = codecs::FindCodecByExtension(format);
    if (codec == nullptr) {
        throw ImagingError(ImagingFailure::UnsupportedFormat,
                           "This editor cannot write the format " + std::string(format) + " yet.");
    }
    const bool working = isWorkingFile_(fileName);
    if (working && memory_->LinkAs(fileName, picture)) {
        return;
    }
    try {
        const codecs::ByteBuffer bytes = codec->write(picture, {quality_, working});
        ReplaceFile(fileName, bytes, working ? Durability::Working : Durability::Lasting);
    } catch (const std::bad_alloc&) {
        TrimBufferPool();
        throw ImagingError(ImagingFailure::OutOfMemory, "There is not enough memory to save this picture.");
    }
    if (working) {
        memory_->Remember(fileName, picture);
    }
}

} // namespace pictorel
