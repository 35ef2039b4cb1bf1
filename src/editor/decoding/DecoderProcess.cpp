// Decoding in a program of its own, see DecoderProcess.h.
#include "editor/decoding/DecoderProcess.h"

#include "editor/decoding/ReceivedPicture.h"
#include "picture/FreeMemory.h"
#include "picture/ImagingError.h"
#include "picture/Limits.h"
#include "programs/decoder/Walls.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

namespace pictorel {
namespace {

constexpr std::int64_t kLargestFile = std::int64_t{5} << 30; // a gigapixel, and room for headers
constexpr std::int64_t kMostShared = kMaximumPixels * PixelArray::kComponents + (std::int64_t{256} << 20);

[[noreturn]] void ThrowBrokenOff() {
    throw ImagingError(ImagingFailure::UnsupportedFormat, "The file could not be decoded.");
}

// Without O_NONBLOCK, opening a pipe that nobody writes to would never return.
OpenFile Open(const std::string& fileName) {
    OpenFile file{Descriptor(::open(fileName.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))};
    struct stat status {};
    if (!file.descriptor.IsOpen() || ::fstat(file.descriptor.Number(), &status) != 0) {
        throw ImagingError(ImagingFailure::UnsupportedFormat,
                           "The file " + fileName + " could not be opened.");
    }
    if (!S_ISREG(status.st_mode) || status.st_size > kLargestFile) {
        throw ImagingError(ImagingFailure::UnsupportedFormat, fileName + " is no picture file.");
    }
    file.bytes = status.st_size;
    return file;
}

// A text that a stranger may have written: fit for any message box, whatever that takes for markup.
std::string PlainText(const std::array<char, 256>& text) {
    const std::string_view whole(text.data(), ::strnlen(text.data(), text.size()));
    std::string plain;
    for (const char letter : whole) {
        const bool isPlain =
            letter >= ' ' && letter <= '~' && letter != '<' && letter != '>' && letter != '&';
        plain += isPlain ? letter : ' ';
    }
    return plain;
}

[[noreturn]] void ThrowRefusal(const decoder::Answer& answer) {
    for (const auto kind : {ImagingFailure::TooLarge, ImagingFailure::OutOfMemory}) {
        if (answer.failure == static_cast<std::uint32_t>(kind)) {
            throw ImagingError(kind, PlainText(answer.text));
        }
    }
    throw ImagingError(ImagingFailure::UnsupportedFormat, PlainText(answer.text));
}

} // namespace

// Starts the program for the next picture when this one is over, however it ended, and sees the last one off.
class DecoderProcess::Change {
  public:
    Change(DecoderProcess& owner, Room& waiting, bool withFonts, Room& leaving)
        : owner_(owner), waiting_(waiting), withFonts_(withFonts), leaving_(leaving) {}
    ~Change() {
        try {
            waiting_ = std::make_unique<DecoderRoom>(owner_.program_, withFonts_);
            owner_.leaving_ = std::jthread([room = std::move(leaving_)] {});
        } catch (const std::exception&) {
            // It is started when it is needed, and seen off by its owner.
        }
    }
    Change(const Change&) = delete;
    Change& operator=(const Change&) = delete;

  private:
    DecoderProcess& owner_;
    Room& waiting_;
    bool withFonts_;
    Room& leaving_;
};

DecoderProcess::DecoderProcess(std::string program, std::chrono::milliseconds patience)
    : program_(std::move(program)),
      patience_(patience),
      plain_(std::make_unique<DecoderRoom>(program_, false)) {}

// One that runs; the one that waits may have been ended by somebody.
DecoderProcess::Room DecoderProcess::TakeRoom(Room& waiting, bool withFonts) const {
    Room room = std::exchange(waiting, nullptr);
    if (room == nullptr || !room->IsRunning()) {
        room = std::make_unique<DecoderRoom>(program_, withFonts);
    }
    return room;
}

// Asks a program that is ready.
std::optional<decoder::Answer> DecoderProcess::Ask(DecoderRoom& room, const OpenFile& file,
                                                   const AnswerMemory& memory) const {
    const std::int64_t free = FreeMemory();
    room.LimitMemory(static_cast<std::uint64_t>(free / 2));
    decoder::Request request;
    request.roomBytes = free;
    request.fileBytes = file.bytes;
    request.memoryBytes = memory.Bytes();
    return room.Ask(request, file.descriptor.Number(), memory.Number(), {patience_, keepWaiting_});
}

DecoderProcess::Decoded DecoderProcess::DecodeIn(Room& waiting, bool withFonts, const OpenFile& file) {
    bool isBrokenOff = false;
    const auto keepWaiting = [&] {
        isBrokenOff = keepWaiting_ && !keepWaiting_();
        return !isBrokenOff;
    };
    Room room = TakeRoom(waiting, withFonts);
    if (!room->Walls(keepWaiting)) {
        if (isBrokenOff) {
            ThrowBrokenOff();
        }
        return {Outcome::NoProgram, {}};
    }
    AnswerMemory memory(std::min(FreeMemory() / 2, kMostShared));
    const auto answer = Ask(*room, file, memory);
    room->End(); // it has no hand on the picture any longer
    const Change change(*this, waiting, withFonts, room);
    if (!answer) {
        ThrowBrokenOff();
    }
    if (answer->outcome == decoder::Outcome::NeedsFonts) {
        return {Outcome::NeedsFonts, {}};
    }
    if (answer->outcome != decoder::Outcome::Decoded) {
        ThrowRefusal(*answer);
    }
    return {Outcome::Picture, memory.Take(*answer)};
}

std::optional<PixelArray> DecoderProcess::Decode(const std::string& fileName) {
    const OpenFile file = Open(fileName);
    Decoded decoded = DecodeIn(plain_, false, file);
    if (decoded.outcome == Outcome::NeedsFonts) {
        decoded = DecodeIn(drawings_, true, file);
    }
    if (decoded.outcome == Outcome::NeedsFonts) {
        ThrowBrokenOff(); // no program of ours says so with its fonts loaded
    }
    return decoded.outcome == Outcome::Picture ? std::optional(std::move(decoded.picture)) : std::nullopt;
}

DecoderProcess::WallReport DecoderProcess::Walls() {
    WallReport report;
    if (plain_ == nullptr || !plain_->IsRunning()) {
        plain_ = std::make_unique<DecoderRoom>(program_, false);
    }
    if (const auto walls = plain_->Walls(keepWaiting_)) {
        for (const decoder::WallName& row : decoder::kWallNames) {
            ((*walls & row.wall) != 0 ? report.standing : report.lacking).emplace_back(row.name);
        }
    }
    return report;
}

} // namespace pictorel
