// Picture files of every format, see ImageCodec.h.
#include "editor/ImageCodec.h"

#include "editor/AtomicFile.h"
#include "picture/BufferPool.h"
#include "picture/ImagingError.h"
#include "picture/codecs/jpeg/JpegCodec.h"
#include "picture/codecs/png/Png.h"

#include <new>
#include <utility>

namespace pictorel {

namespace {

bool IsReadHere(const codecs::Codec& codec) {
    return codec.read == codecs::ReadJpeg || codec.read == codecs::ReadPng;
}

} // namespace

ImageCodec::ImageCodec(IsWorkingFile isWorkingFile, std::shared_ptr<WorkingFileMemory> memory,
                       codecs::CodecTable formats, std::shared_ptr<PictureDecoder> decoder)
    : isWorkingFile_(std::move(isWorkingFile)),
      memory_(std::move(memory)),
      formats_(std::move(formats)),
      decoder_(std::move(decoder)) {}

bool ImageCodec::ReadAny(const std::string& fileName, PixelArray& picture) const {
    const bool working = isWorkingFile_(fileName);
    const bool isStrange = decoder_ != nullptr && !working;
    if (isStrange) {
        if (auto decoded = decoder_->Decode(fileName)) {
            picture = *std::move(decoded);
            return true;
        }
    }
    const auto bytes = ReadWholeFile(fileName);
    const codecs::Codec* const codec = bytes ? formats_.FindByContent(*bytes) : nullptr;
    if (codec == nullptr) {
        return false;
    }
    if (isStrange && !IsReadHere(*codec)) {
        throw ImagingError(
            ImagingFailure::FileAccess,
            "The program pictorel_decoder does not start, and without it only JPEG and PNG files "
            "can be opened safely.");
    }
    picture = codec->read(*bytes, {working});
    if (working) {
        memory_->Remember(fileName, picture);
    }
    return true;
}

bool ImageCodec::Read(const std::string& fileName, PixelArray& picture) {
    picture = PixelArray();
    try {
        return ReadAny(fileName, picture);
    } catch (const ImagingError& error) {
        if (error.Kind() == ImagingFailure::UnsupportedFormat) {
            return false;
        }
        throw;
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
