// Streams in memory for OpenJPEG, see J2kLibrary.h.
#include "picture/codecs/j2k/J2kLibrary.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <thread>

namespace pictorel::codecs {
namespace {

constexpr std::size_t kStreamBytes = std::size_t{1} << 16;
constexpr OPJ_SIZE_T kNothing = static_cast<OPJ_SIZE_T>(-1);

OPJ_SIZE_T ReadBytes(void* out, OPJ_SIZE_T bytes, void* user) {
    auto& source = *static_cast<J2kSource*>(user);
    if (source.at >= source.data.size() && source.at < source.Size() && bytes > 0) {
        constexpr std::array<std::uint8_t, 2> kEndMarker{0xFF, 0xD9};
        *static_cast<std::uint8_t*>(out) = kEndMarker[source.at++ - source.data.size()];
        return 1;
    }
    const std::size_t count = std::min(bytes, source.data.size() - std::min(source.at, source.data.size()));
    if (count == 0) {
        return kNothing;
    }
    std::memcpy(out, source.data.data() + source.at, count);
    for (std::size_t i = 0; source.patchAt != 0 && i < 4; ++i) {
        const std::size_t place = source.patchAt + i;
        if (place >= source.at && place < source.at + count) {
            static_cast<std::uint8_t*>(out)[place - source.at] =
                static_cast<std::uint8_t>(source.patch >> (24 - 8 * i));
        }
    }
    source.at += count;
    return count;
}

OPJ_OFF_T SkipBytes(OPJ_OFF_T bytes, void* user) {
    auto& source = *static_cast<J2kSource*>(user);
    if (bytes < 0) {
        return -1;
    }
    const std::size_t count = std::min(static_cast<std::size_t>(bytes), source.Size() - source.at);
    source.at += count;
    return count == 0 && bytes > 0 ? -1 : static_cast<OPJ_OFF_T>(count);
}

OPJ_BOOL SeekInSource(OPJ_OFF_T place, void* user) {
    auto& source = *static_cast<J2kSource*>(user);
    if (place < 0 || static_cast<std::size_t>(place) > source.Size()) {
        return OPJ_FALSE;
    }
    source.at = static_cast<std::size_t>(place);
    return OPJ_TRUE;
}

OPJ_SIZE_T WriteBytes(void* bytes, OPJ_SIZE_T count, void* user) {
    auto& sink = *static_cast<J2kSink*>(user);
    try { // nothing may be thrown through the library
        if (sink.data.size() < sink.at + count) {
            sink.data.resize(sink.at + count);
        }
    } catch (const std::bad_alloc&) {
        return kNothing;
    }
    std::memcpy(sink.data.data() + sink.at, bytes, count);
    sink.at += count;
    return count;
}

OPJ_BOOL SeekInSink(OPJ_OFF_T place, void* user) {
    static_cast<J2kSink*>(user)->at = static_cast<std::size_t>(place);
    return OPJ_TRUE;
}

OPJ_OFF_T SkipInSink(OPJ_OFF_T bytes, void* user) {
    static_cast<J2kSink*>(user)->at += static_cast<std::size_t>(bytes);
    return bytes;
}

} // namespace

J2kByteStream MakeReadStream(J2kSource& source) {
    J2kByteStream stream(opj_stream_create(kStreamBytes, OPJ_TRUE));
    if (!stream) {
        throw std::bad_alloc();
    }
    opj_stream_set_read_function(stream.get(), ReadBytes);
    opj_stream_set_skip_function(stream.get(), SkipBytes);
    opj_stream_set_seek_function(stream.get(), SeekInSource);
    opj_stream_set_user_data(stream.get(), &source, nullptr);
    opj_stream_set_user_data_length(stream.get(), source.Size());
    return stream;
}

J2kByteStream MakeWriteStream(J2kSink& sink) {
    J2kByteStream stream(opj_stream_create(kStreamBytes, OPJ_FALSE));
    if (!stream) {
        throw std::bad_alloc();
    }
    opj_stream_set_write_function(stream.get(), WriteBytes);
    opj_stream_set_skip_function(stream.get(), SkipInSink);
    opj_stream_set_seek_function(stream.get(), SeekInSink);
    opj_stream_set_user_data(stream.get(), &sink, nullptr);
    return stream;
}

int J2kThreads(std::int64_t pixels) noexcept {
    constexpr std::int64_t kWorthThreads = 256 * 256;
    return pixels < kWorthThreads ? 1 : static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

} // namespace pictorel::codecs
