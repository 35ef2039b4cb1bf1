// The decoder's conversation with the editor, see Conversation.h.
#include "programs/decoder/Conversation.h"

#include "picture/BufferPool.h"
#include "picture/ImagingError.h"
#include "picture/metafile/Metafile.h"
#include "programs/decoder/SharedMemory.h"

#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <optional>

namespace pictorel::decoder {
namespace {

struct GivenRequest {
    Request request;
    int file = -1;
    int memory = -1;
};

template <class Message>
bool Send(int socket, const Message& message) noexcept {
    iovec part{const_cast<Message*>(&message), sizeof(message)}; // NOLINT: the call only reads it
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    return ::sendmsg(socket, &header, MSG_NOSIGNAL) == static_cast<ssize_t>(sizeof(message));
}

std::optional<GivenRequest> Receive(int socket) noexcept {
    GivenRequest given;
    std::array<int, 2> descriptors{-1, -1};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(descriptors))> control{};
    iovec part{&given.request, sizeof(given.request)};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    ssize_t received = 0;
    do {
        received = ::recvmsg(socket, &header, MSG_CMSG_CLOEXEC);
    } while (received < 0 && errno == EINTR);
    const cmsghdr* const rights = CMSG_FIRSTHDR(&header);
    if (received != static_cast<ssize_t>(sizeof(given.request)) || given.request.mark != kMark ||
        rights == nullptr || rights->cmsg_type != SCM_RIGHTS ||
        rights->cmsg_len != CMSG_LEN(sizeof(descriptors))) {
        return std::nullopt;
    }
    std::memcpy(descriptors.data(), CMSG_DATA(rights), sizeof(descriptors));
    given.file = descriptors[0];
    given.memory = descriptors[1];
    return given;
}

// Read rather than mapped: what a decoder has checked must not change under it.
codecs::ByteBuffer ReadFile(int descriptor, std::int64_t bytes) {
    codecs::ByteBuffer file(static_cast<std::size_t>(bytes));
    std::size_t done = 0;
    while (done < file.size()) {
        const ssize_t read =
            ::pread(descriptor, file.data() + done, file.size() - done, static_cast<off_t>(done));
        if (read < 0 && errno == EINTR) {
            continue;
        }
        if (read < 0) {
            throw ImagingError(ImagingFailure::FileAccess, "The file could not be read.");
        }
        if (read == 0) {
            file.resize(done); // it became shorter meanwhile
        }
        done += static_cast<std::size_t>(read);
    }
    ::close(descriptor);
    return file;
}

std::span<const std::uint8_t> RowsOf(const PixelArray& picture) {
    return {picture.Row(0),
            static_cast<std::size_t>(picture.Stride()) * static_cast<std::size_t>(picture.Height())};
}

constexpr std::size_t kDetailAlignment = 64;

Answer Decoded(const PixelArray& picture, SharedMemory& memory) {
    const Metadata& details = picture.Details();
    Answer answer;
    answer.outcome = Outcome::Decoded;
    answer.hasAlpha = picture.HasAlpha() ? 1 : 0;
    answer.width = picture.Width();
    answer.height = picture.Height();
    answer.pixels = memory.Place(RowsOf(picture), kPixelAlignment);
    answer.exif = memory.Place(details.exif, kDetailAlignment);
    answer.icc = memory.Place(details.icc, kDetailAlignment);
    answer.xmp = memory.Place(details.xmp, kDetailAlignment);
    answer.dotsPerInchX = details.dotsPerInchX;
    answer.dotsPerInchY = details.dotsPerInchY;
    answer.partShown = picture.PartShown();
    return answer;
}

Answer Refused(ImagingFailure kind, std::string_view text) {
    Answer answer;
    answer.outcome = Outcome::Refused;
    answer.failure = static_cast<std::uint32_t>(kind);
    std::copy_n(text.begin(), std::min(text.size(), answer.text.size() - 1), answer.text.begin());
    return answer;
}

bool IsDrawing(codecs::ByteView file) {
    const auto drawings = metafile::MetafileCodecs();
    return std::any_of(drawings.begin(), drawings.end(),
                       [&](const codecs::Codec& codec) { return codec.sniff(file); });
}

Answer AnswerTo(const GivenRequest& given, const codecs::CodecTable& formats, bool hasFonts) {
    try {
        const codecs::ByteBuffer file = ReadFile(given.file, given.request.fileBytes);
        if (!hasFonts && IsDrawing(file)) {
            Answer answer;
            answer.outcome = Outcome::NeedsFonts;
            return answer;
        }
        const codecs::Codec* const codec = formats.FindByContent(file);
        if (codec == nullptr) {
            return Refused(ImagingFailure::UnsupportedFormat, "This is no picture of a known format.");
        }
        SharedMemory memory(given.memory, given.request.memoryBytes);
        SetPictureRoom({given.request.roomBytes, kEditingPerByte});
        SetPictureBufferSource([&memory](std::size_t bytes) { return memory.TakePixels(bytes); });
        return Decoded(codec->read(file, {}), memory);
    } catch (const ImagingError& error) {
        return Refused(error.Kind(), error.what());
    } catch (const std::bad_alloc&) {
        return Refused(ImagingFailure::OutOfMemory, "There is not enough memory for this picture.");
    }
}

} // namespace

bool SayReady(int socket, std::uint32_t walls) noexcept {
    Ready ready;
    ready.walls = walls;
    return Send(socket, ready);
}

bool AnswerOneRequest(int socket, const codecs::CodecTable& formats, bool hasFonts) {
    const std::optional<GivenRequest> given = Receive(socket);
    return given && Send(socket, AnswerTo(*given, formats, hasFonts));
}

} // namespace pictorel::decoder
