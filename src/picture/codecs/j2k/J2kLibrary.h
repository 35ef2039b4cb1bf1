// What the reader and the writer of JPEG 2000 share of OpenJPEG: its objects, owned, and streams in memory.
#pragma once

#include "picture/codecs/Codec.h"

#include <openjpeg.h>

#include <memory>

namespace pictorel::codecs {

// The library's codec and stream are one and the same type, so each has its deleter.
template <auto kDestroy>
struct J2kDeleter {
    template <typename Object>
    void operator()(Object* object) const {
        kDestroy(object);
    }
};
using J2kCodec = std::unique_ptr<opj_codec_t, J2kDeleter<opj_destroy_codec>>;
using J2kImage = std::unique_ptr<opj_image_t, J2kDeleter<opj_image_destroy>>;
using J2kByteStream = std::unique_ptr<opj_stream_t, J2kDeleter<opj_stream_destroy>>;

// A codestream in memory and how far it is read.
struct J2kSource {
    ByteView data;
    std::size_t patchAt = 0; // 0 or where four bytes read as the number `patch`, the high one first
    std::uint32_t patch = 0;
    bool lacksEnd = false; // reads as if the marker of the end stood behind the data
    std::size_t at = 0;

    std::size_t Size() const noexcept { return data.size() + (lacksEnd ? 2 : 0); }
};
J2kByteStream MakeReadStream(J2kSource& source);

// A file in the making and where the next bytes go.
struct J2kSink {
    ByteBuffer data;
    std::size_t at = 0;
};
J2kByteStream MakeWriteStream(J2kSink& sink);

// The threads that are worth their start for a picture of so many pixels.
int J2kThreads(std::int64_t pixels) noexcept;

} // namespace pictorel::codecs
