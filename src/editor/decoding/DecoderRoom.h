// One run of the decoder program: started, asked once, gone.
#pragma once

#include "editor/Descriptor.h"
#include "programs/decoder/DecoderMessages.h"

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace pictorel {

// Asked every few hundredths of a second while something is waited for: false breaks the waiting off.
using KeepWaiting = std::function<bool()>;

struct Patience {
    std::chrono::milliseconds longest;
    KeepWaiting keepWaiting; // none: to the end of it
};

class DecoderRoom {
  public:
    // Starts the program, which makes itself ready meanwhile. The program ends when the thread that made this
    // object does.
    DecoderRoom(const std::string& program, bool withFonts);
    ~DecoderRoom(); // waits until the program is gone
    DecoderRoom(const DecoderRoom&) = delete;
    DecoderRoom& operator=(const DecoderRoom&) = delete;

    bool IsRunning() noexcept;

    // Ends the program, whatever it does. Nothing of it runs any longer; what it held goes meanwhile.
    void End() noexcept;

    // The walls that stand around it (bits of programs/decoder/Walls.h); nothing where it did not get so far.
    std::optional<std::uint32_t> Walls(const KeepWaiting& keepWaiting);

    // Tightens its bound on private memory, where it has one.
    void LimitMemory(std::uint64_t bytes) noexcept;

    // Hands it both descriptors with the request, and waits for its answer; nothing where it died, took too
    // long, was broken off or answered something else.
    std::optional<decoder::Answer> Ask(const decoder::Request& request, int file, int memory,
                                       const Patience& patience);

  private:
    bool Wait(const Patience& patience) const;
    template <class Message>
    std::optional<Message> Receive(const Patience& patience) const;

    Descriptor socket_;
    pid_t process_ = -1;
    std::optional<std::uint32_t> walls_;
};

} // namespace pictorel
