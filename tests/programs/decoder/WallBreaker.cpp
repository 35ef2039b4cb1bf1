// Raises walls as the decoder program does, then tries what they are to prevent. Its arguments are the bits
// of the walls and the name of the attempt; its exit status says how that went. A bound on memory or time
// that holds ends it or makes it fail as well.
#include "programs/decoder/WallBreaker.h"

#include "programs/decoder/Walls.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <linux/io_uring.h>
#include <netinet/in.h>
#include <sys/mman.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

namespace {

using namespace pictorel::decoder;

constexpr std::uint64_t kMemoryBytes = std::uint64_t{256} << 20;
constexpr std::uint64_t kSharedBytes = std::uint64_t{64} << 20;

// What attempts need and a decoder does not have: opened before the walls go up.
struct Before {
    std::array<int, 2> sockets{-1, -1};
    int ownFile = -1; // open for writing
    int memory = -1;  // a small piece of shared memory
    int otherSocket = -1;
    pid_t parent = ::getppid();
};

Before Prepare(const char* fileName) {
    Before before;
    ::socketpair(AF_UNIX, SOCK_SEQPACKET, 0, before.sockets.data());
    before.otherSocket = ::socket(AF_INET, SOCK_STREAM, 0);
    before.ownFile = ::open(fileName, O_RDWR | O_CREAT, 0600);
    before.memory = ::memfd_create("memory", 0);
    ::ftruncate(before.memory, 1 << 20);
    return before;
}

bool IsOpen(int descriptor) {
    return descriptor >= 0;
}

bool ChildRuns(long process) {
    if (process == 0) {
        ::syscall(SYS_exit_group, 0);
    }
    return process > 0;
}

bool Execute() {
    // From a child where one may be had, or this program would be gone, which counts as refused.
    const pid_t child = ::fork();
    if (child <= 0) {
        char name[] = "/bin/true";
        char* words[] = {name, nullptr};
        ::execv(name, words);
        if (child == 0) {
            ::_exit(EXIT_FAILURE);
        }
        return false;
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool SendElsewhere(const Before& before) {
    char byte = 'x';
    iovec part{&byte, 1};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    return ::sendmsg(before.sockets[1], &header, MSG_DONTWAIT) == 1;
}

bool Connect(const Before& before) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(9);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto* const general = reinterpret_cast<const sockaddr*>(&address);
    return ::connect(before.otherSocket, general, sizeof(address)) == 0 || errno == ECONNREFUSED;
}

bool ReadOtherMemory(const Before& before) {
    char byte = 0;
    iovec here{&byte, 1};
    iovec there{&byte, 1}; // an address of ours: that of the parent need not exist, which is another error
    return ::process_vm_readv(before.parent, &here, 1, &there, 1, 0) == 1 || errno == EFAULT;
}

bool MakeCode(int protection) {
    void* const page = ::mmap(nullptr, 4096, protection, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return page != MAP_FAILED &&
           ((protection & PROT_EXEC) != 0 || ::mprotect(page, 4096, PROT_READ | PROT_EXEC) == 0);
}

bool TakeMemory() {
    constexpr std::size_t kStep = std::size_t{16} << 20;
    for (std::uint64_t taken = 0; taken <= 2 * kMemoryBytes; taken += kStep) {
        void* const more = ::mmap(nullptr, kStep, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (more == MAP_FAILED) {
            return false;
        }
        std::memset(more, 1, kStep);
    }
    return true;
}

bool ReserveAddresses() {
    constexpr std::size_t kVast = std::size_t{64} << 30;
    return ::mmap(nullptr, kVast, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0) !=
           MAP_FAILED;
}

bool RunForLong() {
    const timespec aWhile{3, 0}; // of processor time, three times what is allowed
    for (timespec now{}; now.tv_sec < aWhile.tv_sec;) {
        ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    }
    return true;
}

bool LiftLimit() {
    const rlimit none{RLIM_INFINITY, RLIM_INFINITY};
    return ::prlimit(0, RLIMIT_CPU, &none, nullptr) == 0;
}

bool MakeRing() {
    io_uring_params parameters{};
    return IsOpen(static_cast<int>(::syscall(SYS_io_uring_setup, 1, &parameters)));
}

// What a decoder needs, to see that the walls leave it.
bool Work(const Before& before) {
    int sum = 0;
    std::thread thread([&] { sum = 1; });
    thread.join();
    void* const memory = std::malloc(kMemoryBytes / 4);
    const bool hasMemory = memory != nullptr;
    std::free(memory);
    void* const shared = ::mmap(nullptr, 1 << 20, PROT_READ | PROT_WRITE, MAP_SHARED, before.memory, 0);
    char byte = 'x';
    iovec part{&byte, 1};
    msghdr header{};
    header.msg_iov = &part;
    header.msg_iovlen = 1;
    return sum == 1 && hasMemory && shared != MAP_FAILED && ::pread(before.memory, &byte, 1, 0) == 1 &&
           ::sendmsg(before.sockets[0], &header, MSG_DONTWAIT) == 1;
}

struct Attempt {
    const char* name;
    bool (*succeeds)(const Before& before);
};

constexpr std::array kAttempts{
    Attempt{"work", Work},
    Attempt{"open a file", [](const Before&) { return IsOpen(::open("/etc/passwd", O_RDONLY)); }},
    Attempt{"open by the newer call",
            [](const Before&) {
                const std::array<std::uint64_t, 3> how{};
                return IsOpen(static_cast<int>(
                    ::syscall(SYS_openat2, AT_FDCWD, "/etc/passwd", how.data(), sizeof(how))));
            }},
    Attempt{"make a file", [](const Before&) { return IsOpen(::open("/tmp", O_TMPFILE | O_RDWR, 0600)); }},
    Attempt{"list a folder", [](const Before&) { return IsOpen(::open("/", O_RDONLY | O_DIRECTORY)); }},
    Attempt{"open what is open once more",
            [](const Before&) { return IsOpen(::open("/proc/self/fd/0", O_RDONLY)); }},
    Attempt{"make a folder",
            [](const Before&) {
                std::string name = "/tmp/wall-breaker-" + std::to_string(::getpid());
                return ::mkdir(name.c_str(), 0700) == 0 && ::rmdir(name.c_str()) == 0;
            }},
    Attempt{"open a socket", [](const Before&) { return IsOpen(::socket(AF_INET, SOCK_STREAM, 0)); }},
    Attempt{"open a local socket", [](const Before&) { return IsOpen(::socket(AF_UNIX, SOCK_STREAM, 0)); }},
    Attempt{"connect", Connect},
    Attempt{"fork", [](const Before&) { return ChildRuns(::fork()); }},
    Attempt{
        "clone a process",
        [](const Before&) { return ChildRuns(::syscall(SYS_clone, SIGCHLD, nullptr, nullptr, nullptr, 0)); }},
    Attempt{"clone by the newer call",
            [](const Before&) {
                std::array<std::uint64_t, 8> how{}; // flags first, the signal at the end fifth
                how[4] = SIGCHLD;
                return ChildRuns(::syscall(SYS_clone3, how.data(), sizeof(how)));
            }},
    Attempt{"execute", [](const Before&) { return Execute(); }},
    Attempt{"write to a file", [](const Before& before) { return ::write(before.ownFile, "x", 1) == 1; }},
    Attempt{"write at a place",
            [](const Before& before) { return ::pwrite(before.ownFile, "x", 1, 0) == 1; }},
    Attempt{"let a file grow", [](const Before& before) { return ::ftruncate(before.ownFile, 4096) == 0; }},
    Attempt{"let shared memory grow",
            [](const Before& before) { return ::ftruncate(before.memory, 2 << 20) == 0; }},
    Attempt{"have shared memory", [](const Before&) { return IsOpen(::memfd_create("more", 0)); }},
    Attempt{"send elsewhere", SendElsewhere},
    Attempt{"be traced", [](const Before&) { return ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0; }},
    Attempt{
        "trace",
        [](const Before& before) { return ::ptrace(PTRACE_SEIZE, before.parent, nullptr, nullptr) == 0; }},
    Attempt{"read other memory", ReadOtherMemory},
    Attempt{"signal", [](const Before& before) { return ::kill(before.parent, 0) == 0; }},
    Attempt{"map code", [](const Before&) { return MakeCode(PROT_READ | PROT_EXEC); }},
    Attempt{"turn data into code", [](const Before&) { return MakeCode(PROT_READ | PROT_WRITE); }},
    Attempt{"take memory", [](const Before&) { return TakeMemory(); }},
    Attempt{"reserve addresses", [](const Before&) { return ReserveAddresses(); }},
    Attempt{"run for long", [](const Before&) { return RunForLong(); }},
    Attempt{"lift a limit", [](const Before&) { return LiftLimit(); }},
    Attempt{"leave its rooms", [](const Before&) { return ::unshare(CLONE_NEWUSER) == 0; }},
    Attempt{"make a ring", [](const Before&) { return MakeRing(); }},
};

} // namespace

int main(int count, char** words) {
    using namespace pictorel::decoder::test;
    if (count != 4) {
        return kWrongUse;
    }
    const auto* const attempt = std::find_if(kAttempts.begin(), kAttempts.end(), [&](const Attempt& each) {
        return std::strcmp(each.name, words[2]) == 0;
    });
    if (attempt == kAttempts.end()) {
        return kWrongUse;
    }
    const Before before = Prepare(words[3]);
    const auto wanted = static_cast<std::uint32_t>(std::strtoul(words[1], nullptr, 10));
    const std::uint32_t standing = RaiseWalls({kMemoryBytes, kSharedBytes, 1, before.sockets[0]}, wanted);
    if (standing != wanted) {
        std::_Exit(kNotAllStand);
    }
    std::_Exit(attempt->succeeds(before) ? kSucceeded : kRefused);
}
