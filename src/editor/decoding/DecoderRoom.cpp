// One run of the decoder program, see DecoderRoom.h.
#include "editor/decoding/DecoderRoom.h"

#include "programs/decoder/Walls.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace pictorel {
namespace {

constexpr std::chrono::seconds kTimeToStart{15};
constexpr int kBetweenQuestions = 30; // milliseconds

// Ends of a connection that keeps messages apart.
std::array<Descriptor, 2> Connection() {
    std::array<int, 2> ends{-1, -1};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        ends = {-1, -1};
    }
    return {Descriptor(ends[0]), Descriptor(ends[1])};
}

// How the program is started: its end of the connection in place, in a group of its own (Ctrl+C in the
// editor's terminal asks the editor alone), no signal blocked or ignored.
class StartConditions {
  public:
    explicit StartConditions(int connection) {
        ::posix_spawn_file_actions_init(&actions_);
        ::posix_spawn_file_actions_adddup2(&actions_, connection, decoder::kSocket);
        ::posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        ::posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        ::posix_spawnattr_init(&attributes_);
        sigset_t signals;
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&attributes_, &signals);
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&attributes_, &signals);
        ::posix_spawnattr_setflags(&attributes_,
                                   POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~StartConditions() {
        ::posix_spawnattr_destroy(&attributes_);
        ::posix_spawn_file_actions_destroy(&actions_);
    }
    StartConditions(const StartConditions&) = delete;
    StartConditions& operator=(const StartConditions&) = delete;

    pid_t Start(const std::string& program, bool withFonts) const {
        std::string name = program;
        std::string argument = decoder::kWithFonts;
        const std::array<char*, 3> words{name.data(), withFonts ? argument.data() : nullptr, nullptr};
        pid_t process = -1;
        const int error =
            ::posix_spawn(&process, program.c_str(), &actions_, &attributes_, words.data(), environ);
        return error == 0 ? process : -1;
    }

  private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

} // namespace

DecoderRoom::DecoderRoom(const std::string& program, bool withFonts) {
    auto [ours, theirs] = Connection();
    if (!ours.IsOpen()) {
        return;
    }
    process_ = StartConditions(theirs.Number()).Start(program, withFonts);
    socket_ = std::move(ours);
}

DecoderRoom::~DecoderRoom() {
    End();
    if (process_ > 0) {
        while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
        }
    }
}

void DecoderRoom::End() noexcept {
    if (process_ > 0) {
        ::kill(process_, SIGKILL);
    }
}

bool DecoderRoom::IsRunning() noexcept {
    if (process_ > 0 && ::waitpid(process_, nullptr, WNOHANG) != 0) {
        process_ = -1;
    }
    return process_ > 0;
}

bool DecoderRoom::Wait(const Patience& patience) const {
    const auto deadline = std::chrono::steady_clock::now() + patience.longest;
    pollfd waiting{socket_.Number(), POLLIN, 0};
    while (std::chrono::steady_clock::now() < deadline) {
        const int ready = ::poll(&waiting, 1, kBetweenQuestions);
        if (ready > 0) {
            return true;
        }
        if ((ready < 0 && errno != EINTR) || (patience.keepWaiting && !patience.keepWaiting())) {
            return false;
        }
    }
    return false;
}

template <class Message>
std::optional<Message> DecoderRoom::Receive(const Patience& patience) const {
    if (!socket_.IsOpen() || !Wait(patience)) {
        return std::nullopt;
    }
    Message message;
    iovec part{&message, sizeof(message)};
    msghdr header{}; // without room for descriptors: none are taken from there
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    const ssize_t received = ::recvmsg(socket_.Number(), &header, MSG_DONTWAIT);
    if (received != static_cast<ssize_t>(sizeof(message)) || (header.msg_flags & MSG_TRUNC) != 0 ||
        message.mark != decoder::kMark) {
        return std::nullopt;
    }
    return message;
}

std::optional<std::uint32_t> DecoderRoom::Walls(const KeepWaiting& keepWaiting) {
    if (!walls_) {
        if (const auto ready = Receive<decoder::Ready>({kTimeToStart, keepWaiting})) {
            walls_ = ready->walls;
        }
    }
    return walls_;
}

void DecoderRoom::LimitMemory(std::uint64_t bytes) noexcept {
#ifdef __linux__
    rlimit limit{};
    const bool isBounded = process_ > 0 && walls_ && (*walls_ & decoder::kMemory) != 0;
    if (isBounded && ::prlimit(process_, RLIMIT_DATA, nullptr, &limit) == 0) {
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, bytes);
        ::prlimit(process_, RLIMIT_DATA, &limit, nullptr);
    }
#endif
}

std::optional<decoder::Answer> DecoderRoom::Ask(const decoder::Request& request, int file, int memory,
                                                const Patience& patience) {
    const std::array<int, 2> descriptors{file, memory};
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(descriptors))> control{};
    decoder::Request sent = request;
    iovec part{&sent, sizeof(sent)};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    header.msg_control = control.data();
    header.msg_controllen = control.size();
    cmsghdr* const rights = CMSG_FIRSTHDR(&header);
    rights->cmsg_level = SOL_SOCKET;
    rights->cmsg_type = SCM_RIGHTS;
    rights->cmsg_len = CMSG_LEN(sizeof(descriptors));
    std::memcpy(CMSG_DATA(rights), descriptors.data(), sizeof(descriptors));
    if (::sendmsg(socket_.Number(), &header, MSG_NOSIGNAL) != static_cast<ssize_t>(sizeof(sent))) {
        return std::nullopt;
    }
    return Receive<decoder::Answer>(patience);
}

} // namespace pictorel
